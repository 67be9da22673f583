// What the numbers of a track mean: the origin of positions, their units and the picture that they refer to.
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

// The picture whose size percentages and fractions refer to.
enum class Basis { Output, Layer };

// Each is empty if neither the format nor the caller specifies it.
struct Conventions {
  std::optional<Origin> origin;
  std::optional<Units> units;
  std::optional<Basis> of;
  std::optional<Size> size;             // of the tracked picture; positions scale from it to the output
  std::optional<double> pixel_centres;  // the position of the first pixel's centre: 0 or 0.5
  std::optional<double> aspect;         // width / height, for HalfHeights
  std::optional<int> counts_from;       // the number of a clip's first frame in the format

  bool operator==(const Conventions&) const = default;
};

// `base`, with everything that `given` specifies replaced.
Conventions overridden(const Conventions& base, const Conventions& given);

// The sizes of the pictures that positions refer to; zero if unknown.
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

// Maps a convention's positions to the output's pixels, with (0, 0) at the outer corner of its upper left pixel.
struct FrameMap {
  AxisMap x;
  AxisMap y;
};

// The picture whose size the conventions need but `sizes` lacks, as named in messages; empty if none.
const char* missingSize(const Conventions& conventions, const PictureSizes& sizes);

// The map of the conventions. Unset ones default to upper left, pixels, relative to the output, centres at 0.5.
// missingSize() must be empty.
FrameMap frameMap(const Conventions& conventions, const PictureSizes& sizes);

// The number of decimals that is enough to distinguish 1/65536 of a pixel, but hides rounding errors.
int usefulDecimals(Units units);

}  // namespace vantorel::tracks
