// Corner tracks: the positions of a layer's four corners over time, in a file's conventions or in the picture's pixels.
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

// "ul", "ur", "ll", "lr": the corners' names in columns, fields and messages.
constexpr std::array<std::string_view, kCornerCount> kCornerNames{"ul", "ur", "ll", "lr"};

using Quadrilateral = std::array<Point, kCornerCount>;

constexpr std::uint8_t kAllCorners = 0b1111;

struct CornerKey {
  double frame = 0.0;  // may lie between two frames
  Quadrilateral points{};
  std::uint8_t present = 0;  // bit c is set if corner c has a position here
  std::uint8_t percent = 0;  // bit 2c for x and 2c + 1 for y of corner c: in percent, whatever the track's units
  std::uint32_t line = 0;    // the key's line in the file, from 1; 0 if there is none

  bool has(std::size_t corner) const { return (present >> corner & 1) != 0; }
  bool complete() const { return present == kAllCorners; }
};

// One coordinate of a source corner: pixels, or a fraction of the picture's width or height.
struct SourceCoordinate {
  double value = 0.0;
  bool is_share = false;
};

// The points of the layer that the track's corners correspond to, if they are not the layer's own corners.
using SourceCorners = std::array<std::array<SourceCoordinate, 2>, kCornerCount>;

struct CornerTrack {
  std::string source;           // the file or files, as messages name them
  std::vector<CornerKey> keys;  // ascending frames, one key per frame, at least one; a single key is constant
  host::Interpolation interpolation = host::Interpolation::Linear;
  Conventions conventions;            // what the positions mean
  bool corners_named = false;         // the file names the corners, so their order need not be guessed
  std::optional<SourceCorners> from;  // empty: the layer's own corners
  bool inverted = false;              // the map goes from the corners to `from`, not the other way
  // The quadrilateral of the layer that is drawn onto the corners, in the layer's pixels or percent of it, keyed by
  // frame like `keys`; empty: the layer's outline.
  std::vector<CornerKey> source_keys;
};

}  // namespace vantorel::tracks
