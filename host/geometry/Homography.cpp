#include "host/geometry/Homography.h"

#include <cmath>

namespace vantorel::host {

namespace {

// The map of the unit square onto the corners; empty if a corner's weight is not positive, since the corners are not
// convex then.
std::optional<Homography> ofUnitSquare(const Corners& c) {
  const Point& a = c.upper_left;
  const Point& b = c.upper_right;
  const Point& d = c.lower_right;
  const Point& e = c.lower_left;
  const Point across{b.x - d.x, b.y - d.y};
  const Point down{e.x - d.x, e.y - d.y};
  const Point skew{a.x - b.x + d.x - e.x, a.y - b.y + d.y - e.y};
  const double determinant = across.x * down.y - down.x * across.y;
  const double g = (skew.x * down.y - skew.y * down.x) / determinant;
  const double h = (across.x * skew.y - across.y * skew.x) / determinant;
  const bool has_positive_weights = 1.0 + g > 0.0 && 1.0 + h > 0.0 && 1.0 + g + h > 0.0;
  if (!std::isfinite(g) || !std::isfinite(h) || !has_positive_weights) {
    return std::nullopt;
  }
  return Homography{
      {b.x - a.x + g * b.x, e.x - a.x + h * e.x, a.x, b.y - a.y + g * b.y, e.y - a.y + h * e.y, a.y, g, h, 1.0}};
}

}  // namespace

std::optional<Homography> Homography::ofRectangle(double width, double height, const Corners& corners) {
  std::optional<Homography> map = ofUnitSquare(corners);
  if (!(width > 0.0 && height > 0.0) || !map || !map->inverse()) {
    return std::nullopt;
  }
  for (std::size_t row = 0; row < map->m.size(); row += 3) {
    map->m[row] /= width;
    map->m[row + 1] /= height;
  }
  return map;
}

std::optional<Homography> Homography::ofQuadrilateral(const Corners& from, const Corners& to) {
  const std::optional<Homography> from_square = ofUnitSquare(from);
  const std::optional<Homography> to_target = ofUnitSquare(to);
  if (!from_square || !to_target) {
    return std::nullopt;
  }
  const std::optional<Homography> to_square = from_square->inverse();
  return to_square && to_target->inverse() ? std::optional(*to_target * *to_square) : std::nullopt;
}

std::optional<Homography> Homography::inverse() const {
  const auto minor = [&](std::size_t a, std::size_t b, std::size_t c, std::size_t d) {
    return m[a] * m[b] - m[c] * m[d];
  };
  const std::array<double, 9> adjugate{minor(4, 8, 5, 7), minor(2, 7, 1, 8), minor(1, 5, 2, 4),
                                       minor(5, 6, 3, 8), minor(0, 8, 2, 6), minor(2, 3, 0, 5),
                                       minor(3, 7, 4, 6), minor(1, 6, 0, 7), minor(0, 4, 1, 3)};
  const double determinant = m[0] * adjugate[0] + m[1] * adjugate[3] + m[2] * adjugate[6];
  Homography result;
  for (std::size_t i = 0; i < adjugate.size(); ++i) {
    result.m[i] = adjugate[i] / determinant;
    if (!std::isfinite(result.m[i])) {
      return std::nullopt;
    }
  }
  return result;
}

Point Homography::operator()(const Point& p) const {
  const double w = weight(p);
  return {(m[0] * p.x + m[1] * p.y + m[2]) / w, (m[3] * p.x + m[4] * p.y + m[5]) / w};
}

Corners Homography::operator()(const Corners& corners) const {
  return {(*this)(corners.upper_left), (*this)(corners.upper_right), (*this)(corners.lower_left),
          (*this)(corners.lower_right)};
}

Jacobian Homography::derivative(const Point& p) const {
  const double w = weight(p);
  const Point image = (*this)(p);
  return {(m[0] - image.x * m[6]) / w, (m[1] - image.x * m[7]) / w, (m[3] - image.y * m[6]) / w,
          (m[4] - image.y * m[7]) / w};
}

Homography operator*(const Homography& left, const Homography& right) {
  Homography product;
  for (std::size_t row = 0; row < 9; row += 3) {
    for (std::size_t column = 0; column < 3; ++column) {
      product.m[row + column] =
          left.m[row] * right.m[column] + left.m[row + 1] * right.m[3 + column] + left.m[row + 2] * right.m[6 + column];
    }
  }
  return product;
}

}  // namespace vantorel::host
