// Corner tracks: where the four corners of a layer are over the frames, as a file says it or in the picture's pixels.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/Animation.h"
#include "tracks/Conventions.h"

namespace vantorel::tracks {

using host::Point;

// The order of corners in every list here.
enum Corner : std::size_t { kUpperLeft, kUpperRight, kLowerLeft, kLowerRight, kCornerCount };

// "ul", "ur", "ll", "lr": what columns, fields and messages call the corners.
constexpr std::array<std::string_view, kCornerCount> kCornerNames{"ul", "ur", "ll", "lr"};

using Quadrilateral = std::array<Point, kCornerCount>;

constexpr std::uint8_t kAllCorners = 0b1111;

struct CornerKey {
  double frame = 0.0;  // may lie between two frames
  Quadrilateral points{};
  std::uint8_t present = 0;  // bit c is set where corner c has a position here
  std::uint8_t percent = 0;  // bit 2c for x and 2c + 1 for y of corner c: in percent, whatever the track's units
  std::uint32_t line = 0;    // the line of the file that holds it, from 1; 0 where there is none

  bool has(std::size_t corner) const { return (present >> corner & 1) != 0; }
  bool complete() const { return present == kAllCorners; }
};

// One coordinate of a source corner: pixels, or a share of the picture's width or height.
struct SourceCoordinate {
  double value = 0.0;
  bool is_share = false;
};

// Which points of the layer the track's corners are, where those are not the layer's own corners.
using SourceCorners = std::array<std::array<SourceCoordinate, 2>, kCornerCount>;

struct CornerTrack {
  std::string source;           // the file or files, as messages name them
  std::vector<CornerKey> keys;  // ascending frames, one key a frame, at least one key; one alone is a constant
  host::Interpolation interpolation = host::Interpolation::Linear;
  Conventions conventions;            // what the positions mean
  bool corners_named = false;         // the file told which point is which corner, so that the order is no guess
  std::optional<SourceCorners> from;  // empty: the layer's own corners
  bool inverted = false;              // the corners go to `from`, rather than from there
  // The quadrilateral of the layer that alone goes onto the corners, in the layer's pixels or percent of it, over the
  // frames as `keys` are; empty: the layer's outline.
  std::vector<CornerKey> source_keys;
};

}  // namespace vantorel::tracks
