// Projective maps of the plane.
#pragma once

#include <array>
#include <optional>

#include "host/Animation.h"

namespace vantorel::host {

// The derivative of a map of the plane at a point: how far its image moves per unit of x and of y.
struct Jacobian {
  double xx = 1.0;  // d image.x / dx
  double xy = 0.0;  // d image.x / dy
  double yx = 0.0;
  double yy = 1.0;
};

// A 3x3 matrix, row by row, for column vectors (x, y, 1); the image of a point is the product's first two elements
// divided by the third, the weight. Maps made by `ofRectangle` and `ofQuadrilateral` have positive weights inside the
// quadrilateral that they map, and so do their inverses inside its image.
struct Homography {
  std::array<double, 9> m{1, 0, 0, 0, 1, 0, 0, 0, 1};

  // The map of [0, width] x [0, height] onto the corners: (0, 0) to the upper left one, (width, height) to the lower
  // right one. Empty if the corners are not strictly convex or not finite, or if a side is not positive.
  static std::optional<Homography> ofRectangle(double width, double height, const Corners& corners);

  // The map of one quadrilateral's corners onto another's; empty if either has no map from a square.
  static std::optional<Homography> ofQuadrilateral(const Corners& from, const Corners& to);

  // The inverse, scaled so that each weight is the reciprocal of the weight at the point's preimage; empty for a
  // singular matrix.
  std::optional<Homography> inverse() const;

  double weight(const Point& p) const { return m[6] * p.x + m[7] * p.y + m[8]; }

  // Infinite or NaN on the horizon, where the weight is 0.
  Point operator()(const Point& p) const;
  Corners operator()(const Corners& corners) const;
  Jacobian derivative(const Point& p) const;
};

// The composition: first `right`, then `left`.
Homography operator*(const Homography& left, const Homography& right);

}  // namespace vantorel::host
