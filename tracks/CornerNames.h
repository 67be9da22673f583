// Which corner a name means.
#pragma once

#include <optional>
#include <string_view>

#include "tracks/CornerTrack.h"

namespace vantorel::tracks {

// "ul", "Top Left", "lower_right", "plate TR": the corner that the name, or a part of it, means; nothing if none or
// several.
std::optional<Corner> cornerOfName(std::string_view name);

// A column of positions: which point, and which of its coordinates.
struct CoordinateColumn {
  std::size_t point = 0;  // a Corner, or the place in a numbered list
  bool numbered = false;  // the column has a number rather than a corner's name
  bool is_y = false;
};

// "ulx", "top_left_x", "TLx", "x1", "p1.y", "x top left"; nothing for other columns. Numbers are given as written.
std::optional<CoordinateColumn> coordinateOfColumn(std::string_view name);

// Whether the column holds the frame's number: "frame", "Frame No.", "f".
bool isFrameColumn(std::string_view name);

}  // namespace vantorel::tracks
