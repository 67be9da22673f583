#include "effect/ProjectiveMap.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double kNearZero = 1e-12;

double zeroWhenNear(double value) {
  return std::abs(value) <= kNearZero ? 0.0 : value;
}

M_Matrix3 mapFromUnitSquare(const M_Vector2T<double>* q) {
  const double sum_x = q[0].x - q[1].x + q[2].x - q[3].x;
  const double sum_y = q[0].y - q[1].y + q[2].y - q[3].y;
  const double dx1 = q[1].x - q[2].x;
  const double dx2 = q[3].x - q[2].x;
  const double dy1 = q[1].y - q[2].y;
  const double dy2 = q[3].y - q[2].y;
  double den = dx1 * dy2 - dy1 * dx2;
  if (den == 0.0) {
    den = 0.0001;
  }
  const double g = (sum_x * dy2 - dx2 * sum_y) / den;
  const double h = (dx1 * sum_y - dy1 * sum_x) / den;

  M_Matrix3 map(false);
  map.m[0][0] = q[1].x - q[0].x + g * q[1].x;
  map.m[0][1] = q[1].y - q[0].y + g * q[1].y;
  map.m[0][2] = g;
  map.m[1][0] = q[3].x - q[0].x + h * q[3].x;
  map.m[1][1] = q[3].y - q[0].y + h * q[3].y;
  map.m[1][2] = h;
  map.m[2][0] = q[0].x;
  map.m[2][1] = q[0].y;
  map.m[2][2] = 1.0;
  return map;
}

// The adjugate of the matrix with rows (a, d, g), (b, e, h), (c, f, i): its inverse up to a factor, which does not
// matter in a projective map.
M_Matrix3 adjugate(const M_Matrix3& map) {
  const double a = map.m[0][0];
  const double d = map.m[0][1];
  const double g = map.m[0][2];
  const double b = map.m[1][0];
  const double e = map.m[1][1];
  const double h = map.m[1][2];
  const double c = map.m[2][0];
  const double f = map.m[2][1];
  const double i = map.m[2][2];

  M_Matrix3 result(false);
  result.m[0][0] = e * i - h * f;
  result.m[0][1] = g * f - d * i;
  result.m[0][2] = d * h - g * e;
  result.m[1][0] = h * c - b * i;
  result.m[1][1] = a * i - g * c;
  result.m[1][2] = g * b - a * h;
  result.m[2][0] = b * f - e * c;
  result.m[2][1] = d * c - a * f;
  result.m[2][2] = a * e - d * b;
  return result;
}

// True when the three points span a triangle: their cross product is larger than rounding alone could make it for
// collinear points. Each coordinate is assumed to be off by up to epsilon times the largest one on its axis.
bool spanTriangle(const M_Vector2T<double>& p, const M_Vector2T<double>& q, const M_Vector2T<double>& r) {
  const double dx1 = q.x - p.x;
  const double dy1 = q.y - p.y;
  const double dx2 = r.x - p.x;
  const double dy2 = r.y - p.y;
  const double twice_area = std::abs(dx1 * dy2 - dy1 * dx2);
  const double largest_x = std::max({std::abs(p.x), std::abs(q.x), std::abs(r.x)});
  const double largest_y = std::max({std::abs(p.y), std::abs(q.y), std::abs(r.y)});
  const double rounding = std::numeric_limits<double>::epsilon() *
                          ((std::abs(dx1) + std::abs(dx2)) * largest_y + (std::abs(dy1) + std::abs(dy2)) * largest_x);
  return twice_area > kNearZero + rounding;  // false for NaN
}

// A projective map onto the unit square exists exactly when no three of the four points are collinear.
bool isProperQuad(const M_Vector2T<double>* q) {
  return spanTriangle(q[0], q[1], q[2]) && spanTriangle(q[1], q[2], q[3]) && spanTriangle(q[2], q[3], q[0]) &&
         spanTriangle(q[3], q[0], q[1]);
}

bool allFinite(const M_Matrix3& map) {
  for (const auto& row : map.m) {
    for (const double entry : row) {
      if (!std::isfinite(entry)) {
        return false;
      }
    }
  }
  return true;
}

}  // namespace

unsigned char KZFX_MapUnitSquareToFromQuad(M_Vector2T<double>* quad, M_Matrix3* out, unsigned char to_quad) {
  const M_Matrix3 map = mapFromUnitSquare(quad);
  if (to_quad != 0) {
    *out = map;
    return 1;
  }
  const M_Matrix3 to_unit = adjugate(map);
  const double bottom_right = to_unit.m[2][2];
  if (!isProperQuad(quad) || !allFinite(to_unit) || std::abs(bottom_right) <= kNearZero) {
    return 0;
  }
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      out->m[i][j] = zeroWhenNear(to_unit.m[i][j] / bottom_right);
    }
  }
  return 1;
}

std::int32_t MapQuadToQuadFloat(M_Vector2T<double>* from, M_Vector2T<double>* to, M_Matrix3* out) {
  M_Matrix3 map(false);
  M_Matrix3 from_unit_square(false);
  if (KZFX_MapUnitSquareToFromQuad(from, &map, 0) == 0 || KZFX_MapUnitSquareToFromQuad(to, &from_unit_square, 1) == 0) {
    return 1;
  }
  const std::int32_t err = M_ConcatMatrix(&from_unit_square, &map);
  if (err == 0) {
    *out = map;
  }
  return err;
}

std::int32_t HomogeneouslyTransformFloatPoints(const M_Matrix3* m, int count, M_Vector2T<double>* points) {
  for (int k = 0; k < count; ++k) {
    M_Vector3T<double> v{points[k].x, points[k].y, 1.0};
    const std::int32_t err = M_TransformVector3(m, 1, &v);
    if (err != 0) {
      return err;
    }
    if (std::abs(v.z) <= kNearZero) {
      return 1;
    }
    points[k].x = zeroWhenNear(v.x / v.z);
    points[k].y = zeroWhenNear(v.y / v.z);
  }
  return 0;
}
