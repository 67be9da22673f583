// The projective map of one quadrilateral onto another.
#pragma once

#include <array>
#include <optional>

#include "tracks/CornerTrack.h"

namespace vantorel::tracks {

// A 3 x 3 matrix over (x, y, 1), row by row.
class Homography {
 public:
  // The map that carries the corners of `from` to those of `to`; nothing where three corners of one are on a line.
  static std::optional<Homography> between(const Quadrilateral& from, const Quadrilateral& to);

  // The point's image; nothing where it is at infinity or beyond the horizon.
  std::optional<Point> apply(const Point& point) const;

 private:
  using Matrix = std::array<double, 9>;
  explicit Homography(const Matrix& matrix) : matrix_(matrix) {}
  static std::optional<Matrix> ofUnitSquare(const Quadrilateral& q);

  Matrix matrix_;
};

}  // namespace vantorel::tracks
