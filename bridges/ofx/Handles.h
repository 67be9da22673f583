// What can be taken hold of in the overlay: corners, sides and the inside of the quadrilateral. Canonical coordinates.
#pragma once

#include <array>
#include <optional>

#include "bridges/ofx/OfxTypes.h"

namespace vantorel::ofx {

// In the order of host::kCornerNames: upper left, upper right, lower left, lower right.
using Quad = std::array<PointD, 4>;

// The corners once round.
inline constexpr std::array<std::size_t, 4> kRing{0, 1, 3, 2};

// Which corners move together.
struct Grip {
  std::array<bool, 4> moves{};
  bool operator==(const Grip&) const = default;
};

// Half the side of a corner's handle, and how near a side the pen must be: screen pixels.
inline constexpr double kHandleRadius = 6.0;
inline constexpr double kSideReach = 5.0;

// The nearest corner in reach, else the nearest side, else the inside; none farther away. `pixel` is a screen pixel's
// size in canonical units.
std::optional<Grip> gripAt(const Quad& quad, const PointD& pen, const PointD& pixel);

// Why there is no perspective to draw, in a word or two; null where there is.
const char* degeneracyOf(const Quad& quad);

}  // namespace vantorel::ofx
