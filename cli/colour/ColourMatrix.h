// The linear part of colour conversions: 3x3 matrices, chromaticities, and adaptation between whites.
#pragma once

#include <array>

namespace vantorel::cli {

using Triple = std::array<double, 3>;
using Matrix3 = std::array<Triple, 3>;  // rows

constexpr Matrix3 kIdentity3{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

Matrix3 operator*(const Matrix3& a, const Matrix3& b);
Triple operator*(const Matrix3& m, const Triple& v);
// The determinant of `m` must not be 0.
Matrix3 inverse(const Matrix3& m);
double determinant(const Matrix3& m);

// CIE 1931 xy.
struct Chromaticity {
  double x = 0.0;
  double y = 0.0;
};

struct Primaries {
  Chromaticity red, green, blue, white;
};

constexpr Chromaticity kD65{0.3127, 0.3290};
// The white of ICC's profile connection space, in CIE XYZ, with ICC's rounding.
constexpr Triple kD50Xyz{0.9642, 1.0, 0.8249};

// Whether the primaries form a triangle around the white point; files may contain anything.
bool isUsable(const Primaries& primaries);
// Whether all coordinates agree to within the rounding in files.
bool areClose(const Primaries& a, const Primaries& b);

// CIE XYZ with Y = 1.
Triple xyzOf(const Chromaticity& xy);
// The Bradford adaptation of CIE XYZ from one white to another.
Matrix3 adaptation(const Triple& from_white, const Triple& to_white);
// From linear RGB to CIE XYZ adapted to D65; white has Y = 1. The primaries must be usable.
Matrix3 toXyz(const Primaries& primaries);

}  // namespace vantorel::cli
