// The four corners: their names, their order, and positions as people write them.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <tl/expected.hpp>

#include "host/Animation.h"
#include "host/Image.h"
#include "tracks/CornerTrack.h"

namespace vantorel::cli {

using tracks::Corner;
using tracks::kCornerCount;
using tracks::kCornerNames;  // an option is a name after two dashes
using tracks::kLowerLeft;
using tracks::kLowerRight;
using tracks::kUpperLeft;
using tracks::kUpperRight;

// One coordinate: layer pixels, or percent of the layer's width or height.
struct Coordinate {
  double value = 0.0;
  bool percent = false;
};

struct CornerPosition {
  Coordinate x;
  Coordinate y;
};

using CornerPositions = std::array<CornerPosition, kCornerCount>;
using OptionalCorners = std::array<std::optional<CornerPosition>, kCornerCount>;

// The corners given, and the layer's own in place of the others.
CornerPositions orLayersOwn(const OptionalCorners& given);

// A value, or the fault of what it was read from: "<what is wrong>; <what to do>", to follow the name of the input.
template <typename T>
using Parsed = tl::expected<T, std::string>;

// "12.5" or "12.5%": finite, and pixels within what the effect's 16.16 numbers hold.
Parsed<Coordinate> parseCoordinate(std::string_view text);

// "X,Y", each as parseCoordinate takes it.
Parsed<CornerPosition> parseCorner(std::string_view text);

// A finite number as a coordinate; pixels are held to the same range.
Parsed<Coordinate> checkedCoordinate(double value, bool percent);

// The position in pixels of a layer of that size; a fault when the pixels of a percentage are out of range.
Parsed<host::Point> toLayerPixels(const CornerPosition& position, host::Size layer);

}  // namespace vantorel::cli
