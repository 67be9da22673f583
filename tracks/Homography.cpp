#include "tracks/Homography.h"

#include <cmath>

#include "tracks/Quadrilaterals.h"

namespace vantorel::tracks {

namespace {

using Matrix = std::array<double, 9>;

Matrix product(const Matrix& a, const Matrix& b) {
  Matrix result{};
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      for (std::size_t i = 0; i < 3; ++i) {
        result[3 * row + column] += a[3 * row + i] * b[3 * i + column];
      }
    }
  }
  return result;
}

Matrix adjugate(const Matrix& m) {
  return {m[4] * m[8] - m[5] * m[7], m[2] * m[7] - m[1] * m[8], m[1] * m[5] - m[2] * m[4],
          m[5] * m[6] - m[3] * m[8], m[0] * m[8] - m[2] * m[6], m[2] * m[3] - m[0] * m[5],
          m[3] * m[7] - m[4] * m[6], m[1] * m[6] - m[0] * m[7], m[0] * m[4] - m[1] * m[3]};
}

double determinant(const Matrix& m) {
  return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) + m[2] * (m[3] * m[7] - m[4] * m[6]);
}

}  // namespace

// From (0, 0), (1, 0), (0, 1), (1, 1) to the upper left, upper right, lower left and lower right corner.
std::optional<Homography::Matrix> Homography::ofUnitSquare(const Quadrilateral& q) {
  const Point& p = q[kUpperLeft];
  const Point& right = q[kUpperRight];
  const Point& down = q[kLowerLeft];
  const Point& far = q[kLowerRight];
  for (std::size_t i = 0; i < kCornerCount; ++i) {
    if (turn(q[kAround[i]], q[kAround[(i + 1) % 4]], q[kAround[(i + 2) % 4]]) == 0.0) {
      return std::nullopt;
    }
  }
  const Point a{right.x - far.x, right.y - far.y};
  const Point b{down.x - far.x, down.y - far.y};
  const Point sum{p.x - right.x + far.x - down.x, p.y - right.y + far.y - down.y};
  const double denominator = a.x * b.y - b.x * a.y;
  const double g = (sum.x * b.y - b.x * sum.y) / denominator;
  const double h = (a.x * sum.y - sum.x * a.y) / denominator;
  return Matrix{right.x - p.x + g * right.x,
                down.x - p.x + h * down.x,
                p.x,
                right.y - p.y + g * right.y,
                down.y - p.y + h * down.y,
                p.y,
                g,
                h,
                1.0};
}

std::optional<Homography> Homography::between(const Quadrilateral& from, const Quadrilateral& to) {
  const auto from_unit = ofUnitSquare(from);
  const auto to_unit = ofUnitSquare(to);
  if (!from_unit || !to_unit) {
    return std::nullopt;
  }
  const double scale = determinant(*from_unit);
  Matrix matrix = product(*to_unit, adjugate(*from_unit));
  for (double& element : matrix) {
    element /= scale;
  }
  return Homography(matrix);
}

std::optional<Point> Homography::apply(const Point& point) const {
  const Matrix& m = matrix_;
  const double w = m[6] * point.x + m[7] * point.y + m[8];
  const Point image{(m[0] * point.x + m[1] * point.y + m[2]) / w, (m[3] * point.x + m[4] * point.y + m[5]) / w};
  if (!(w > 0.0) || !std::isfinite(image.x) || !std::isfinite(image.y)) {
    return std::nullopt;
  }
  return image;
}

}  // namespace vantorel::tracks
