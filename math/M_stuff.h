// The math library: 3x3 matrices of doubles with their vectors, and 32-bit rational numbers.
//
// Functions return an error code, 0 for success, unless they say otherwise. They keep no state and allocate nothing:
// calls on different objects may run on any threads at once. "Required" pointers that a function does not check must
// be valid; where a missing (null) pointer has a defined outcome, the function says so. Objects stay the caller's.
//
// C++17 or later.
#pragma once

#include <cstdint>

#include "support/KZFX_srect.h"

// Marks what the module and the shared library export, all with plain (unmangled) names.
#define M_API extern "C" __attribute__((visibility("default")))

constexpr std::int32_t M_ErrNullPointer = 123;     // a required pointer is missing; the functions list other uses
constexpr std::int32_t M_ErrRatioOverflow = 4354;  // rational arithmetic overflowed, and no other report was asked for
constexpr std::int32_t M_ErrZeroDenominator = 4358;  // a denominator, or a requested new denominator, is 0

// ---- Matrices and vectors ----
//
// Matrices act on row vectors: the point (x, y) is the row [x y 1] and becomes [x y 1] * M, so that translation stands
// in the bottom row, the perspective terms in the right-hand column, and "first A, then B" is the product A * B. Each
// function that builds a transform appends it to what the matrix already does. Lengths are in the unit of the points.
// Arithmetic is not checked: overflow, NaN and infinity propagate as usual.

// A 2-D point. The default constructor leaves the components unset.
template <typename T>
struct M_Vector2T {
  T x;
  T y;
};

// A homogeneous point of three components. The default constructor leaves them unset.
template <typename T>
struct M_Vector3T {
  T x;
  T y;
  T z;
};

struct M_Matrix3;

// *m = identity. A missing m does nothing. Always 0.
M_API std::int32_t M_SetIdentityMatrix(M_Matrix3* m);

// A 3x3 matrix, stored row by row: m[row][column].
struct M_Matrix3 {
  double m[3][3];

  // Leaves the entries unset. A program that loads the module instead of linking the library has to construct its
  // matrices this way, since the next constructor and setIdentity call into the library.
  M_Matrix3() = default;
  // The identity, or, for false, nine entries left unset.
  explicit M_Matrix3(bool identity) {
    if (identity) {
      setIdentity();
    }
  }
  M_Matrix3(const M_Matrix3&) = default;
  M_Matrix3& operator=(const M_Matrix3&) = default;

  void setIdentity() { M_SetIdentityMatrix(this); }
};

// The kinds of transform that M_GetMatrixType distinguishes.
enum M_MatrixType : int {
  M_MatrixIdentity = 0,
  M_MatrixTranslate = 1,
  M_MatrixScale = 2,
  M_MatrixScaleTranslate = 3,
  M_MatrixAffine = 4,       // rotation or shear, with any scale and translation
  M_MatrixPerspective = 5,  // the right-hand column is not (0, 0, 1)
};

// *b = *b * *a: a is applied after b. a and b are required and may be the same matrix, which is then squared. Always 0.
M_API std::int32_t M_ConcatMatrix(const M_Matrix3* a, M_Matrix3* b);

// Appends a translation by (tx, ty). A missing m does nothing. Always 0.
M_API std::int32_t M_TranslateMatrix(M_Matrix3* m, double tx, double ty);

// Appends a scaling by (sx, sy) about the fixed point (cx, cy). If both factors are exactly 1, m keeps its bits; any
// other factors are accepted, including 0 and negative ones. m is required. Always 0.
M_API std::int32_t M_ScaleMatrix(M_Matrix3* m, double sx, double sy, double cx, double cy);

// Appends a rotation by `degrees` about (cx, cy): a positive angle turns clockwise on a screen whose y axis points
// down. At an angle of exactly 0, m keeps its bits. M_ErrNullPointer when m is missing.
M_API std::int32_t M_RotateMatrix(M_Matrix3* m, double degrees, double cx, double cy);

// v[0..count) become v * m, in place, with no division by the homogeneous weight. m and v are required and must not
// overlap. A count of 0 or less does nothing. Always 0.
M_API std::int32_t M_TransformVector3(const M_Matrix3* m, int count, M_Vector3T<double>* v);

// p[0..count) are transformed by the affine part of m, in place; the perspective column is ignored. m and p must not
// overlap. A count of 0 or less does nothing. M_ErrNullPointer when m or p is missing, at any count.
M_API std::int32_t M_TransformFloatPoints(const M_Matrix3* m, int count, M_Vector2T<double>* p);

// Replaces *r by the bounding box of its four corners, transformed by the affine part of m. `corners`, if given, is an
// array of four that receives the transformed corners, in the order upper left, upper right, lower right, lower left of
// r; it must not overlap r. `not_rect`, if given, is set to whether these may fail to form an upright rectangle: true
// for matrices of type affine and perspective. The box starts at the first corner; after that, a NaN coordinate never
// changes it. M_ErrNullPointer when m or r is missing.
M_API std::int32_t M_TransformFloatRect(const M_Matrix3* m, M_FloatRect* r, M_Vector2T<double>* corners,
                                        bool* not_rect);

// *type = the M_MatrixType of m, by exact comparison: even the smallest deviation of an entry counts, and so does a
// NaN. M_ErrNullPointer when m or type is missing; *type then keeps its value.
M_API std::int32_t M_GetMatrixType(const M_Matrix3* m, int* type);

// Returns the remainder of x / y with the quotient rounded towards zero; it has the sign of x. 0 when x or y is exactly
// 0. The quotient is first rounded to a double, so the remainder is meaningless for quotients beyond 2^53. NaN for a
// NaN or infinite x and for a NaN y, and for an infinite y too, unlike fmod, since 0 times infinity is NaN.
M_API double M_fmod(double x, double y);

// ---- Integers ----

// Returns x rounded to the nearest integer, halves upwards: floor(x + 0.5). The sum is formed in double precision, so
// the double just below 0.5 gives 1, and the one just above -0.5 gives -1. Gives -2147483648 for NaN and for values
// outside the int32 range.
M_API std::int32_t M_RoundDouble(double x);

// *gcd = the greatest common divisor of a and b, never 0: b for a = 0, but 1 for b = 0, whatever a is.
// M_ErrNullPointer when gcd is missing.
M_API std::int32_t M_UnsignedGCD(std::uint32_t a, std::uint32_t b, std::uint32_t* gcd);

// Returns the number of zero bits above the highest set bit: 0 to 31, and 32 for x = 0.
M_API std::int16_t M_LeadingZeros(std::uint32_t x);

// Returns whether a + b leaves the int32 range; exact.
M_API bool M_AddWouldOverflow(std::int32_t a, std::int32_t b);

// Return whether a * b may leave the int32 (uint32) range. False is certain; true is not: only the bit lengths are
// compared, so some products that would fit, such as 32768 * 32768 (32768 * 131071 unsigned), are reported too.
M_API bool M_MulWouldOverflow(std::int32_t a, std::int32_t b);
M_API bool M_UMulWouldOverflow(std::uint32_t a, std::uint32_t b);

// ---- Rational numbers ----
//
// Denominators may use all 32 bits. Results are not in lowest terms unless stated otherwise, and `out` may be the same
// object as any operand. A failed operation gives 0/0.

// The number num / den. A denominator of 0 makes it invalid.
struct M_Ratio {
  std::int32_t num;
  std::uint32_t den;
};

// The outcome of a sum, difference or product.
enum M_RatioKind : unsigned char {
  M_RatioExact = 0,
  M_RatioOverflow = 1,     // no result: 0/0
  M_RatioApproximate = 2,  // computed in floating point, and converted by M_FpLong2Ratio
};

// The argument `status` of M_AddRatio, M_SubRatio and M_MulRatio takes one of three forms:
// - null: no approximation; an overflow is returned as M_ErrRatioOverflow.
// - a byte: approximation is allowed if its bit M_RatioAllowApproximation is set on entry; on return it holds the
// M_RatioKind, and an overflow is reported only there, with error code 0. On any error but a missing pointer it holds
// M_RatioExact.
// - M_RatioApproximateUnreported(): approximation is allowed; M_ErrRatioOverflow is returned only if that fails too.
constexpr unsigned char M_RatioAllowApproximation = 2;
inline unsigned char* M_RatioApproximateUnreported() {
  // The pointer is a marker and is never dereferenced. NOLINTNEXTLINE(performance-no-int-to-ptr)
  return reinterpret_cast<unsigned char*>(~static_cast<std::uintptr_t>(0));
}

// *out = *a + *b, and *a - *b. Exact, over the least common denominator of the operands as given; if a step may
// overflow, over that of the operands in lowest terms; if one still may, approximate if `status` allows it, else an
// overflow. Negating -2147483648 counts as a step that overflows. If one operand is zero, the result is the other one
// as given. M_ErrZeroDenominator, with *out = 0/0, for an operand with denominator 0; M_ErrNullPointer when a, b or out
// is missing, and then nothing is written.
M_API std::int32_t M_AddRatio(const M_Ratio* a, const M_Ratio* b, M_Ratio* out, unsigned char* status);
M_API std::int32_t M_SubRatio(const M_Ratio* a, const M_Ratio* b, M_Ratio* out, unsigned char* status);

// *out = *a * *b, from the terms as given; if a product may overflow, from the terms after cross-cancellation; if one
// still may, as for M_AddRatio. M_ErrNullPointer also for an operand with denominator 0, with *out = 0/0.
M_API std::int32_t M_MulRatio(const M_Ratio* a, const M_Ratio* b, M_Ratio* out, unsigned char* status);

// *out = *in in lowest terms; zero becomes 0/1. Two kinds of ratio are kept as they are: those with denominator 0, and
// those whose greatest common divisor is 2^31 or more (-2147483648 / 2^31, and zero over such a denominator).
// `reduced`, if given, is set to whether the terms have a common divisor, even one that is too large to divide by. If
// in or out is missing, only `reduced` is cleared. Always 0.
M_API std::int32_t M_ReduceRatio(const M_Ratio* in, M_Ratio* out, bool* reduced);

// *out = *in over the denominator new_den, its numerator rounded to the nearest integer, halves upwards, computed in
// double precision. `exact`, if given, is set to whether the value is unchanged, within double precision: changes below
// one part in 2^51 are not detected. `overflow`, if given, is set to whether the numerator left the int32 range, which
// is not an error but makes *out 0/0. If new_den equals the denominator, `overflow` keeps its value, so clear it
// beforehand. M_ErrZeroDenominator, with *out = 0/0 and `exact` as it was, when a denominator is 0; M_ErrNullPointer
// when in or out is missing, and then nothing is written.
M_API std::int32_t M_ConvRatio(const M_Ratio* in, std::uint32_t new_den, M_Ratio* out, bool* exact, bool* overflow);

// *out_num = the numerator of num / den over new_den, rounded like M_ConvRatio's; 0 on any failure. `overflow`, if
// given, is set to whether it left the int32 range, in which case the code is 0; without the flag the code is
// M_ErrNullPointer. M_ErrZeroDenominator when a denominator is 0; M_ErrNullPointer when out_num is missing, and then
// nothing is written.
M_API std::int32_t M_ShortConvRatio(std::int32_t num, std::uint32_t den, std::uint32_t new_den, std::int32_t* out_num,
                                    bool* overflow);

// *out = the fraction nearest to `value`, rounded to single precision, among those with no term above 2^30, in lowest
// terms. Magnitudes from 2^30 up to 2^31 therefore give 2^30, and those below 2^-32 give 0/1. For magnitudes of 2^31
// and above, and for NaN, *overflow is set and *out is 0/0, with code 0. M_ErrNullPointer when out or overflow is
// missing, and then nothing is written.
M_API std::int32_t M_FpLong2Ratio(double value, M_Ratio* out, bool* overflow);
