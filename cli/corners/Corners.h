// The four corners: their names and order, and parsing positions.
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

// The given corners, with the layer's own corners for the missing ones.
CornerPositions orLayersOwn(const OptionalCorners& given);

// A value, or the error: "<what is wrong>; <what to do>", to follow the name of the input.
template <typename T>
using Parsed = tl::expected<T, std::string>;

// "12.5" or "12.5%": finite; pixels must be within the range of the effect's 16.16 numbers.
Parsed<Coordinate> parseCoordinate(std::string_view text);

// "X,Y", each in the form of parseCoordinate().
Parsed<CornerPosition> parseCorner(std::string_view text);

// A finite number as a coordinate; pixels are checked against the same range.
Parsed<Coordinate> checkedCoordinate(double value, bool percent);

// The position in pixels of a layer of that size; an error if a percentage gives pixels out of range.
Parsed<host::Point> toLayerPixels(const CornerPosition& position, host::Size layer);

}  // namespace vantorel::cli
