#include "cli/colour/ColourMatrix.h"

#include <cmath>

namespace vantorel::cli {

namespace {

constexpr Matrix3 kBradford{{{0.8951, 0.2664, -0.1614}, {-0.7502, 1.7135, 0.0367}, {0.0389, -0.0685, 1.0296}}};

Matrix3 columns(const Triple& a, const Triple& b, const Triple& c) {
  return {{{a[0], b[0], c[0]}, {a[1], b[1], c[1]}, {a[2], b[2], c[2]}}};
}

Matrix3 diagonal(const Triple& d) {
  return {{{d[0], 0, 0}, {0, d[1], 0}, {0, 0, d[2]}}};
}

Triple homogeneous(const Chromaticity& xy) {
  return {xy.x, xy.y, 1.0 - xy.x - xy.y};
}

bool isFinite(const Chromaticity& xy) {
  constexpr double kFarthest = 4.0;  // some camera primaries are imaginary, but none is this far out
  return std::abs(xy.x) <= kFarthest && std::abs(xy.y) <= kFarthest;
}

}  // namespace

Matrix3 operator*(const Matrix3& a, const Matrix3& b) {
  Matrix3 product{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      product[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
    }
  }
  return product;
}

Triple operator*(const Matrix3& m, const Triple& v) {
  Triple product{};
  for (std::size_t i = 0; i < 3; ++i) {
    product[i] = m[i][0] * v[0] + m[i][1] * v[1] + m[i][2] * v[2];
  }
  return product;
}

double determinant(const Matrix3& m) {
  return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) - m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
         m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
}

Matrix3 inverse(const Matrix3& m) {
  const double scale = 1.0 / determinant(m);
  Matrix3 result{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      const std::size_t a = (j + 1) % 3, b = (j + 2) % 3, c = (i + 1) % 3, d = (i + 2) % 3;
      result[i][j] = scale * (m[a][c] * m[b][d] - m[a][d] * m[b][c]);
    }
  }
  return result;
}

bool isUsable(const Primaries& p) {
  if (!isFinite(p.red) || !isFinite(p.green) || !isFinite(p.blue) || !isFinite(p.white) || p.white.y < 1e-3) {
    return false;
  }
  const Matrix3 rgb = columns(homogeneous(p.red), homogeneous(p.green), homogeneous(p.blue));
  if (std::abs(determinant(rgb)) < 1e-6) {
    return false;
  }
  const Triple amounts = inverse(rgb) * homogeneous(p.white);
  return amounts[0] > 0.0 && amounts[1] > 0.0 && amounts[2] > 0.0;
}

bool areClose(const Primaries& a, const Primaries& b) {
  constexpr double kRounding = 1e-3;
  const auto close = [](const Chromaticity& p, const Chromaticity& q) {
    return std::abs(p.x - q.x) <= kRounding && std::abs(p.y - q.y) <= kRounding;
  };
  return close(a.red, b.red) && close(a.green, b.green) && close(a.blue, b.blue) && close(a.white, b.white);
}

Triple xyzOf(const Chromaticity& xy) {
  return {xy.x / xy.y, 1.0, (1.0 - xy.x - xy.y) / xy.y};
}

Matrix3 adaptation(const Triple& from_white, const Triple& to_white) {
  const Triple from = kBradford * from_white;
  const Triple to = kBradford * to_white;
  return inverse(kBradford) * diagonal({to[0] / from[0], to[1] / from[1], to[2] / from[2]}) * kBradford;
}

Matrix3 toXyz(const Primaries& p) {
  const Matrix3 rgb = columns(homogeneous(p.red), homogeneous(p.green), homogeneous(p.blue));
  const Triple white = xyzOf(p.white);
  return adaptation(white, xyzOf(kD65)) * rgb * diagonal(inverse(rgb) * white);
}

}  // namespace vantorel::cli
