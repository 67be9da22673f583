// The math library: 3x3 matrices of doubles with their vectors, and 32-bit rational numbers.
//
// Matrices act on row vectors: the point (x, y) is the row [x y 1] and becomes [x y 1] * M, so that translation stands
// in the bottom row, the perspective terms in the right-hand column, and "first A, then B" is the product A * B. Every
// builder appends its transform after what the matrix already does.
//
// Functions return an error code, 0 for success, unless they say otherwise. They keep no state: calls on different
// objects may run on any threads at once. Arithmetic is not watched: overflow, NaN and infinity pass through the
// doubles.
#pragma once

#include <cstdint>

#include "support/KZFX_srect.h"

// Marks what the module and the shared library export, all with plain (unmangled) names.
#define M_API extern "C" __attribute__((visibility("default")))

constexpr std::int32_t M_ErrNullPointer = 123;  // a required pointer is missing

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

// *m = identity. A missing m does nothing and gives 0.
M_API std::int32_t M_SetIdentityMatrix(M_Matrix3* m);

// A 3x3 matrix, stored row by row: m[row][column].
struct M_Matrix3 {
  double m[3][3];

  // The identity, or, for false, nine entries left unset.
  explicit M_Matrix3(bool identity) {
    if (identity) {
      SetIdentity();
    }
  }
  M_Matrix3(const M_Matrix3&) = default;
  M_Matrix3& operator=(const M_Matrix3&) = default;

  void SetIdentity() { M_SetIdentityMatrix(this); }
};

// The kinds of transform that M_GetMatrixType tells apart.
enum M_MatrixType : int {
  M_MatrixIdentity = 0,
  M_MatrixTranslate = 1,
  M_MatrixScale = 2,
  M_MatrixScaleTranslate = 3,
  M_MatrixAffine = 4,       // rotation or shear, with any scale and translation
  M_MatrixPerspective = 5,  // the right-hand column is not (0, 0, 1)
};

// *b = *b * *a: a is applied after b. The two may be the same matrix. Both are required.
M_API std::int32_t M_ConcatMatrix(const M_Matrix3* a, M_Matrix3* b);

// Appends a translation by (tx, ty). A missing m does nothing and gives 0.
M_API std::int32_t M_TranslateMatrix(M_Matrix3* m, double tx, double ty);

// Appends a scaling by (sx, sy) about the fixed point (cx, cy). Factors of exactly 1 change nothing. m is required.
M_API std::int32_t M_ScaleMatrix(M_Matrix3* m, double sx, double sy, double cx, double cy);

// Appends a rotation about (cx, cy), clockwise on a screen whose y axis points down for a positive angle. An angle of
// exactly 0 changes nothing. M_ErrNullPointer when m is missing.
M_API std::int32_t M_RotateMatrix(M_Matrix3* m, double degrees, double cx, double cy);

// Each of `count` vectors becomes v * m; no division by the homogeneous weight. m and v are required.
M_API std::int32_t M_TransformVector3(const M_Matrix3* m, int count, M_Vector3T<double>* v);

// Carries `count` points through the affine part of m, ignoring the perspective column. M_ErrNullPointer when m or p is
// missing.
M_API std::int32_t M_TransformFloatPoints(const M_Matrix3* m, int count, M_Vector2T<double>* p);

// *r = the bounding box of r's corners carried through the affine part of m. `corners`, when given, receives the four
// carried corners in the order upper left, upper right, lower right, lower left; *not_rect, when given, tells whether
// they may fail to form an axis-aligned rectangle (types 4 and 5). M_ErrNullPointer when m or r is missing.
M_API std::int32_t M_TransformFloatRect(const M_Matrix3* m, M_FloatRect* r, M_Vector2T<double>* corners,
                                        bool* not_rect);

// *type = the M_MatrixType of m, by exact comparisons; a NaN entry counts as different. M_ErrNullPointer when either is
// missing.
M_API std::int32_t M_GetMatrixType(const M_Matrix3* m, int* type);

// The remainder of x / y, with the sign of x; 0 when either is 0.
M_API double M_fmod(double x, double y);
