// What can be dragged in the overlay: the corners, sides and inside of the quadrilateral. Canonical coordinates.
#pragma once

#include <array>
#include <optional>

#include "bridges/ofx/OfxTypes.h"

namespace vantorel::ofx {

// In the order of host::kCornerNames: upper left, upper right, lower left, lower right.
using Quad = std::array<PointD, 4>;

// The order of the corners around the quadrilateral.
inline constexpr std::array<std::size_t, 4> kRing{0, 1, 3, 2};

// Which corners move together.
struct Grip {
  std::array<bool, 4> moves{};
  bool operator==(const Grip&) const = default;
};

// How close the pen must be to a corner or to a side, in screen pixels.
inline constexpr double kHandleRadius = 6.0;
inline constexpr double kSideReach = 5.0;

// The nearest corner within reach, otherwise the nearest side, otherwise the inside; nothing if the pen is on none of
// them. `pixel` is the size of a screen pixel in canonical units.
std::optional<Grip> gripAt(const Quad& quad, const PointD& pen, const PointD& pixel);

// Why the quadrilateral has no perspective, in a few words; null if it has one.
const char* degeneracyOf(const Quad& quad);

}  // namespace vantorel::ofx
