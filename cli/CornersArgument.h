// Corner positions as people write them: layer pixels or percent of the layer.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "host/Animation.h"
#include "host/Image.h"

namespace vantorel::cli {

// One coordinate: layer pixels, or percent of the layer's width or height.
struct Coordinate {
  double value = 0.0;
  bool percent = false;
};

struct CornerPosition {
  Coordinate x;
  Coordinate y;
};

// The order of corners in every list here, as in options and files.
enum Corner : std::size_t { kUpperLeft, kUpperRight, kLowerLeft, kLowerRight, kCornerCount };
using CornerPositions = std::array<CornerPosition, kCornerCount>;

// "12.5" or "12.5%". Throws CommandError, naming `input`, for anything that is not a finite number, or whose pixels
// are outside what 16.16 holds.
Coordinate parseCoordinate(const std::string& input, std::string_view text);

// "X,Y", each as parseCoordinate takes it.
CornerPosition parseCorner(const std::string& input, std::string_view text);

// The position in pixels of a layer of that size. Throws CommandError, naming `input`, when 16.16 cannot hold it.
host::Point toLayerPixels(const std::string& input, const CornerPosition& position, host::Size layer);

}  // namespace vantorel::cli
