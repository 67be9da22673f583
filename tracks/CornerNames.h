// Recognises corners by their names.
#pragma once

#include <optional>
#include <string_view>

#include "tracks/CornerTrack.h"

namespace vantorel::tracks {

// "ul", "Top Left", "lower_right", "plate TR": the corner that the name or a part of it stands for; empty if it is none
// or ambiguous.
std::optional<Corner> cornerOfName(std::string_view name);

// A column of positions: the point, and which of its coordinates.
struct CoordinateColumn {
  std::size_t point = 0;  // a Corner, or the number in a numbered list
  bool numbered = false;  // the column has a number rather than a corner's name
  bool is_y = false;
};

// "ulx", "top_left_x", "TLx", "x1", "p1.y", "x top left"; empty for other columns. Point numbers are returned as
// written.
std::optional<CoordinateColumn> coordinateOfColumn(std::string_view name);

// Whether the column holds frame numbers: "frame", "Frame No.", "f".
bool isFrameColumn(std::string_view name);

}  // namespace vantorel::tracks
