#include <gtest/gtest.h>

#include <cmath>

#include "math/M_stuff.h"

namespace {

using Point = M_Vector2T<double>;

Point carried(const M_Matrix3& m, Point p) {
  EXPECT_EQ(M_TransformFloatPoints(&m, 1, &p), 0);
  return p;
}

void expectPoint(Point p, double x, double y) {
  EXPECT_NEAR(p.x, x, 1e-12);
  EXPECT_NEAR(p.y, y, 1e-12);
}

int typeOf(const M_Matrix3& m) {
  int type = -1;
  EXPECT_EQ(M_GetMatrixType(&m, &type), 0);
  return type;
}

TEST(Matrix, BuildersAppendTheirTransform) {
  M_Matrix3 m(true);
  EXPECT_EQ(M_TranslateMatrix(&m, 5, 7), 0);
  expectPoint(carried(m, {1, 1}), 6, 8);
  EXPECT_EQ(M_ScaleMatrix(&m, 2, 3, 10, 10), 0);
  expectPoint(carried(m, {1, 1}), 2, 4);
  EXPECT_EQ(M_ScaleMatrix(&m, 1, 2, 0, 1), 0);
  EXPECT_EQ(M_ScaleMatrix(&m, 1, 1, 5, 5), 0);
  expectPoint(carried(m, {1, 1}), 2, 7);
  EXPECT_EQ(M_RotateMatrix(&m, 90, 4, -2), 0);
  expectPoint(carried(m, {1, 1}), -5, -4);
  EXPECT_EQ(M_RotateMatrix(&m, 180, 4, -2), 0);
  expectPoint(carried(m, {1, 1}), 13, 0);
  EXPECT_EQ(M_RotateMatrix(&m, 0, 4, -2), 0);
  const Point twice = carried(m, carried(m, {7, -5}));
  EXPECT_EQ(M_ConcatMatrix(&m, &m), 0);  // with itself
  expectPoint(carried(m, {7, -5}), twice.x, twice.y);
  EXPECT_EQ(M_SetIdentityMatrix(&m), 0);
  expectPoint(carried(m, {7, -5}), 7, -5);
}

TEST(Matrix, HomogeneousVectorsUseEveryEntry) {
  const double entries[3][3] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 10}};
  M_Matrix3 m(false);
  std::copy(&entries[0][0], &entries[0][0] + 9, &m.m[0][0]);
  M_Vector3T<double> v[2] = {{1, 10, 100}, {-1, 0, 2}};
  EXPECT_EQ(M_TransformVector3(&m, 2, v), 0);
  EXPECT_TRUE(v[0].x == 741 && v[0].y == 852 && v[0].z == 1063);
  EXPECT_TRUE(v[1].x == 13 && v[1].y == 14 && v[1].z == 17);
}

TEST(Matrix, TypesAreExact) {
  // What each entry alone makes of the identity.
  const int alone[9] = {M_MatrixScale,       M_MatrixAffine,    M_MatrixPerspective, M_MatrixAffine,     M_MatrixScale,
                        M_MatrixPerspective, M_MatrixTranslate, M_MatrixTranslate,   M_MatrixPerspective};
  for (int i = 0; i < 9; ++i) {
    M_Matrix3 m(true);
    EXPECT_EQ(typeOf(m), M_MatrixIdentity);
    double& entry = m.m[i / 3][i % 3];
    entry = std::nextafter(entry, 2.0);
    EXPECT_EQ(typeOf(m), alone[i]) << i;
    entry = NAN;
    EXPECT_EQ(typeOf(m), alone[i]) << i;
  }
  M_Matrix3 m(true);
  M_TranslateMatrix(&m, 3, 4);
  M_ScaleMatrix(&m, 2, 2, 0, 0);
  EXPECT_EQ(typeOf(m), M_MatrixScaleTranslate);
  M_RotateMatrix(&m, 30, 0, 0);
  EXPECT_EQ(typeOf(m), M_MatrixAffine);
  m.m[0][2] = 1;
  EXPECT_EQ(typeOf(m), M_MatrixPerspective);
}

TEST(Matrix, RectanglesBecomeTheBoxOfTheirCorners) {
  for (const int quarter : {0, 1, 2, 3}) {  // so that every corner comes to be each of the box's
    M_Matrix3 m(true);
    M_RotateMatrix(&m, 90 * quarter + 30, 0, 0);
    M_FloatRect r(1, 2, 20, 10);
    const Point expected[4] = {carried(m, {1, 2}), carried(m, {20, 2}), carried(m, {20, 10}), carried(m, {1, 10})};
    Point corners[4];
    bool not_rect = false;
    EXPECT_EQ(M_TransformFloatRect(&m, &r, corners, &not_rect), 0);
    EXPECT_TRUE(not_rect);
    for (int i = 0; i < 4; ++i) {
      expectPoint(corners[i], expected[i].x, expected[i].y);
    }
    expectPoint({r.left, r.top}, expected[(7 - quarter) % 4].x, expected[(4 - quarter) % 4].y);
    expectPoint({r.right, r.bottom}, expected[(5 - quarter) % 4].x, expected[(6 - quarter) % 4].y);
    M_Matrix3 shift(true);
    M_TranslateMatrix(&shift, 1, 2);
    EXPECT_EQ(M_TransformFloatRect(&shift, &r, nullptr, &not_rect), 0);
    EXPECT_FALSE(not_rect);
    expectPoint({r.left, r.top}, expected[(7 - quarter) % 4].x + 1, expected[(4 - quarter) % 4].y + 2);
    shift.m[1][2] = 0.25;
    EXPECT_EQ(M_TransformFloatRect(&shift, &r, nullptr, &not_rect), 0);
    EXPECT_TRUE(not_rect);
  }
}

TEST(Matrix, MissingPointers) {
  M_Matrix3 m(true);
  Point p = {1, 2};
  M_FloatRect r(0, 0, 1, 1);
  int type = 7;
  EXPECT_EQ(M_SetIdentityMatrix(nullptr), 0);
  EXPECT_EQ(M_TranslateMatrix(nullptr, 1, 2), 0);
  EXPECT_EQ(M_RotateMatrix(nullptr, 0, 0, 0), M_ErrNullPointer);
  EXPECT_EQ(M_TransformFloatPoints(nullptr, 1, &p), M_ErrNullPointer);
  EXPECT_EQ(M_TransformFloatPoints(&m, 0, nullptr), M_ErrNullPointer);
  EXPECT_EQ(M_TransformFloatRect(nullptr, &r, nullptr, nullptr), M_ErrNullPointer);
  EXPECT_EQ(M_TransformFloatRect(&m, nullptr, nullptr, nullptr), M_ErrNullPointer);
  EXPECT_EQ(M_GetMatrixType(nullptr, &type), M_ErrNullPointer);
  EXPECT_EQ(M_GetMatrixType(&m, nullptr), M_ErrNullPointer);
  EXPECT_EQ(type, 7);
}

TEST(Matrix, RemainderHasTheSignOfTheDividend) {
  EXPECT_EQ(M_fmod(7, 3), 1);
  EXPECT_EQ(M_fmod(-7, 3), -1);
  EXPECT_EQ(M_fmod(7, -3), 1);
  EXPECT_EQ(M_fmod(-7, -3), -1);
  EXPECT_EQ(M_fmod(0, 5), 0);
  EXPECT_EQ(M_fmod(5, 0), 0);
}

}  // namespace
