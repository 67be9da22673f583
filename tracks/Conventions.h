// What the numbers of a track mean: where positions count from, in which units and of what.
#pragma once

#include <optional>

#include "host/Image.h"

namespace vantorel::tracks {

using host::Size;

enum class Origin {
  UpperLeft,  // y grows downwards
  LowerLeft,  // y grows upwards
};

enum class Units {
  Pixels,
  Percent,
  Fraction,     // 0 to 1
  CentreSpan,   // -1 at the first pixel's centre to 1 at the last one's
  HalfHeights,  // x from -aspect to aspect, y from -1 to 1
};

// Which picture's size percent and fractions are of.
enum class Basis { Output, Layer };

// Each is empty where neither the format nor the caller says it.
struct Conventions {
  std::optional<Origin> origin;
  std::optional<Units> units;
  std::optional<Basis> of;
  std::optional<Size> size;             // of the tracked picture; positions scale from it to the output
  std::optional<double> pixel_centres;  // what position the first pixel's centre has: 0 or 0.5
  std::optional<double> aspect;         // width / height as HalfHeights counts it
  std::optional<int> counts_from;       // which number the format gives to a clip's first frame

  bool operator==(const Conventions&) const = default;
};

// What `given` says, and what `base` says where it says nothing.
Conventions overridden(const Conventions& base, const Conventions& given);

// The pictures that positions relate to. A size of zero is not known.
struct PictureSizes {
  Size output;
  Size layer;
};

// One axis of a convention: pixels = value * numerator / denominator + offset.
struct AxisMap {
  double numerator = 1.0;
  double denominator = 1.0;
  double offset = 0.0;

  double toPixels(double value) const { return value * numerator / denominator + offset; }
  double fromPixels(double pixels) const { return (pixels - offset) * denominator / numerator; }
};

// From a convention's positions to the output's pixels, with (0, 0) at the outer corner of its upper left pixel.
struct FrameMap {
  AxisMap x;
  AxisMap y;
};

// Which picture's size the conventions need and `sizes` lack, as a message names it; empty where none.
const char* missingSize(const Conventions& conventions, const PictureSizes& sizes);

// The map of the conventions, whose unset ones are upper left, pixels, of the output, 0.5. missingSize() must be empty.
FrameMap frameMap(const Conventions& conventions, const PictureSizes& sizes);

// How many digits after the point tell 1/65536 of a pixel and more apart, and hide what rounding adds.
int usefulDecimals(Units units);

}  // namespace vantorel::tracks
