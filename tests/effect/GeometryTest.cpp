#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "effect/CornerGeometry.h"
#include "effect/PathChoice.h"
#include "effect/ProjectiveMap.h"
#include "tests/effect/ScriptedHost.h"

namespace {

using Point = M_Vector2T<double>;
using Quad = std::array<Point, 4>;

constexpr double kPi = 3.14159265358979323846;

void expectQuad(const Point* p, const Quad& expected, double tolerance) {
  for (int i = 0; i < 4; ++i) {
    EXPECT_NEAR(p[i].x, expected[static_cast<std::size_t>(i)].x, tolerance) << i;
    EXPECT_NEAR(p[i].y, expected[static_cast<std::size_t>(i)].y, tolerance) << i;
  }
}

void expectMatrix(const M_Matrix3& m, const double (&rows)[3][3], double tolerance) {
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) {
      EXPECT_NEAR(m.m[r][c], rows[r][c], tolerance) << r << c;
    }
  }
}

M_Matrix3 sentinel() {
  M_Matrix3 m(true);
  m.m[0][1] = 77.0;
  return m;
}

// Whether there is an inverse; checks that the output is left alone when there is none.
bool inverseExists(Quad q) {
  const M_Matrix3 before = sentinel();
  M_Matrix3 m = before;
  const bool exists = KZFX_MapUnitSquareToFromQuad(q.data(), &m, 0) != 0;
  EXPECT_TRUE(exists ? m.m[2][2] == 1.0 : std::memcmp(&m, &before, sizeof m) == 0);
  return exists;
}

// A convex quadrilateral on the 1/16 grid none of whose corners is nearly straight: one corner in each quarter about a
// centre.
Quad someConvexQuad() {
  const auto far = [] { return *rc::gen::inRange(32, 1600) / 16.0; };
  const double x = *rc::gen::inRange(-3000, 3000);
  const double y = *rc::gen::inRange(-3000, 3000);
  Quad q = {{{x - far(), y - far()}, {x + far(), y - far()}, {x + far(), y + far()}, {x - far(), y + far()}}};
  for (std::size_t i = 0; i < 4; ++i) {
    const Point &a = q[i], &b = q[(i + 1) % 4], &c = q[(i + 2) % 4];
    const double cross = (b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x);
    RC_PRE(cross > 0.1 * std::hypot(b.x - a.x, b.y - a.y) * std::hypot(c.x - b.x, c.y - b.y));
  }
  return q;
}

}  // namespace

TEST(ProjectiveMap, WorkedMatrices) {
  M_Matrix3 m(false);
  Quad unit = {{{0, 0}, {1, 0}, {1, 1}, {0, 1}}};
  for (const unsigned char toQuad : {0, 1}) {
    EXPECT_EQ(KZFX_MapUnitSquareToFromQuad(unit.data(), &m, toQuad), 1);
    expectMatrix(m, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, 0.0);
  }
  Quad rectangle = {{{10, 20}, {110, 20}, {110, 70}, {10, 70}}};
  EXPECT_EQ(KZFX_MapUnitSquareToFromQuad(rectangle.data(), &m, 1), 1);
  expectMatrix(m, {{100, 0, 0}, {0, 50, 0}, {10, 20, 1}}, 0.0);
  EXPECT_EQ(KZFX_MapUnitSquareToFromQuad(rectangle.data(), &m, 0), 1);
  expectMatrix(m, {{0.01, 0, 0}, {0, 0.02, 0}, {-0.1, -0.4, 1}}, 1e-15);
  Quad trapezoid = {{{0, 0}, {100, 0}, {80, 50}, {20, 50}}};
  EXPECT_EQ(KZFX_MapUnitSquareToFromQuad(trapezoid.data(), &m, 1), 1);
  expectMatrix(m, {{100, 0, 0}, {100 / 3.0, 250 / 3.0, 2 / 3.0}, {0, 0, 1}}, 1e-13);
  Point centre = {0.5, 0.5};
  EXPECT_EQ(HomogeneouslyTransformFloatPoints(&m, 1, &centre), 0);
  EXPECT_NEAR(centre.x, 50.0, 1e-12);
  EXPECT_NEAR(centre.y, 31.25, 1e-12);
}

TEST(ProjectiveMap, InverseExistsForProperQuadsAlone) {
  EXPECT_TRUE(inverseExists({{{0, 0}, {100, 0}, {100, 80}, {0, 80}}}));
  EXPECT_TRUE(inverseExists({{{-32768, -32768}, {-32767.5, -32768}, {-32767.5, -32767.5}, {-32768, -32767.5}}}));
  EXPECT_TRUE(inverseExists({{{30000, 30000}, {30001, 30000}, {30001, 30001}, {30000, 30001}}}));
  EXPECT_TRUE(inverseExists({{{0, 0}, {100, 0}, {30, 30}, {0, 100}}}));  // concave
  EXPECT_FALSE(inverseExists({{{5, 5}, {5, 5}, {5, 5}, {5, 5}}}));
  EXPECT_FALSE(inverseExists({{{0, 0}, {10, 0}, {20, 0}, {0, 10}}}));  // q0 q1 q2 collinear
  EXPECT_FALSE(inverseExists({{{20, 0}, {0, 0}, {0, 10}, {0, 20}}}));  // q1 q2 q3 collinear
  EXPECT_FALSE(inverseExists({{{0, 0}, {std::nan(""), 0}, {9, 9}, {0, 9}}}));
  // The sides of this one meet in the origin, which so maps to infinity.
  EXPECT_FALSE(inverseExists({{{-1, 1}, {1, 1}, {2, 2}, {-2, 2}}}));

  M_Matrix3 m(false);
  Quad collinear = {{{20, 0}, {0, 0}, {0, 10}, {0, 20}}};
  EXPECT_EQ(KZFX_MapUnitSquareToFromQuad(collinear.data(), &m, 1), 1);
  for (const auto& row : m.m) {
    for (const double entry : row) {
      EXPECT_TRUE(std::isfinite(entry));
    }
  }
  M_Matrix3 untouched = sentinel();
  Quad square = {{{0, 0}, {1, 0}, {1, 1}, {0, 1}}};
  EXPECT_EQ(MapQuadToQuadFloat(collinear.data(), square.data(), &untouched), 1);
  EXPECT_EQ(untouched.m[0][1], 77.0);
  EXPECT_EQ(MapQuadToQuadFloat(square.data(), collinear.data(), &untouched), 0);
}

TEST(ProjectiveMap, PointsAtInfinityStopTheTransform) {
  M_Matrix3 m(true);
  m.m[0][2] = -1.0;  // w = 1 - x
  Point p[3] = {{0.5, 1e-13}, {1.0, 5.0}, {0.25, 0.25}};
  EXPECT_EQ(HomogeneouslyTransformFloatPoints(&m, 3, p), 1);
  EXPECT_EQ(p[0].x, 1.0);
  EXPECT_EQ(p[0].y, 0.0);  // 2e-13 counts as 0
  EXPECT_EQ(p[1].x, 1.0);
  EXPECT_EQ(p[1].y, 5.0);
  EXPECT_EQ(p[2].x, 0.25);
  EXPECT_EQ(HomogeneouslyTransformFloatPoints(&m, 0, p + 1), 0);
  EXPECT_EQ(HomogeneouslyTransformFloatPoints(&m, -1, p + 1), 0);
}

RC_GTEST_PROP(ProjectiveMap, CarriesCornersToCornersAndBack, ()) {
  Quad from = someConvexQuad();
  Quad to = someConvexQuad();
  M_Matrix3 m(false);
  M_Matrix3 inverse(false);
  // Where a horizon passes through the origin there is no map.
  RC_PRE(MapQuadToQuadFloat(from.data(), to.data(), &m) == 0);
  RC_PRE(MapQuadToQuadFloat(to.data(), from.data(), &inverse) == 0);
  Quad there = from;
  RC_ASSERT(HomogeneouslyTransformFloatPoints(&m, 4, there.data()) == 0);
  Point inside = {(from[0].x + from[2].x) / 2, (from[0].y + from[2].y) / 2};
  const Point start = inside;
  RC_ASSERT(HomogeneouslyTransformFloatPoints(&m, 1, &inside) == 0);
  RC_ASSERT(HomogeneouslyTransformFloatPoints(&inverse, 1, &inside) == 0);
  RC_ASSERT(std::hypot(inside.x - start.x, inside.y - start.y) < 1e-4);
  for (std::size_t i = 0; i < 4; ++i) {
    RC_ASSERT(std::hypot(there[i].x - to[i].x, there[i].y - to[i].y) < 1e-4);
  }
}

TEST(CornerPoints, CarryTheWholeBuffer) {
  Point p[4];
  {
    ScriptedHost host(8, {100, 80});
    host.in.output_origin_x = 10;
    host.in.output_origin_y = -20;
    host.setCorners({{1, 2}, {90.5, 3}, {95, 70}, {0, 75}});
    EXPECT_EQ(GetCornerPoints(&host.in, &host.out, &host.input.world, p), 0);
    expectQuad(p, {{{11, -18}, {100.5, -17}, {105, 50}, {10, 55}}}, 1e-9);
    EXPECT_EQ(host.log, kReadCorners);
    EXPECT_TRUE(host.outIs());
  }
  {  // Half resolution, and a buffer that is larger than the layer and offset from it.
    ScriptedHost host(8, {100, 80});
    host.in.downsample_x_den = host.in.downsample_y_den = 2;
    host.in.source_origin_x = 5;
    host.in.source_origin_y = 3;
    host.input.world.width = 70;
    host.input.world.height = 60;
    host.setCorners({{0, 0}, {100, 0}, {100, 40}, {0, 40}});  // twice as wide as the layer's 50 x 40
    EXPECT_EQ(GetCornerPoints(&host.in, &host.out, &host.input.world, p), 0);
    expectQuad(p, {{{-10, -3}, {130, -3}, {130, 57}, {-10, 57}}}, 1e-9);
  }
  {  // The product wraps at 32 bits, the denominator is unsigned, and a size has its fraction.
    ScriptedHost host(8, {5, 4});
    host.in.width = 65537;
    host.in.downsample_x_num = 65537;  // wraps to 131073
    host.in.downsample_x_den = 0x80000000u;
    EXPECT_EQ(ScaledLayerSize(&host.in).width, 131073 / 2147483648.0);
    host.in.height = 101;
    host.in.downsample_y_den = 2;
    EXPECT_EQ(ScaledLayerSize(&host.in).height, 50.5);
  }
  {  // Errors: the parameter read's own, then 1 for a layer without a map. The buffer's own corners stay.
    ScriptedHost host(8, {100, 80});
    host.fail("checkin_param", 3, 66);
    EXPECT_EQ(GetCornerPoints(&host.in, &host.out, &host.input.world, p), 66);
    expectQuad(p, {{{0, 0}, {100, 0}, {100, 80}, {0, 80}}}, 0.0);
    host.in.width = 0;
    EXPECT_EQ(GetCornerPoints(&host.in, &host.out, &host.input.world, p), 1);
    expectQuad(p, {{{0, 0}, {100, 0}, {100, 80}, {0, 80}}}, 0.0);
  }
}

TEST(PathChoice, CcwIsExact) {
  struct {
    Point p0, p1, p2;
    std::int32_t turn;
  } cases[] = {
      {{0, 0}, {1, 0}, {1, 1}, 1},
      {{0, 0}, {1, 0}, {1, -1}, -1},
      {{0, 0}, {1, 0}, {-1, 0}, -1},
      {{0, 0}, {0, 1}, {0, -1}, -1},
      {{0, 0}, {1, 1}, {2, 2}, 1},
      {{0, 0}, {2, 2}, {1, 1}, 0},
      {{0, 0}, {3, 3}, {3, 3}, 0},
      {{4, 4}, {4, 4}, {5, 5}, 1},
      {{4, 4}, {5, 5}, {4, 4}, 0},
      {{0, 0}, {1, 0}, {1, 1e-300}, 1},
      {{std::nan(""), 0}, {1, 0}, {1, 1}, 0},
  };
  for (auto& c : cases) {
    EXPECT_EQ(CCW(&c.p0, &c.p1, &c.p2), c.turn) << c.p1.x << " " << c.p2.x << " " << c.p2.y;
  }
}

TEST(PathChoice, SendsTheRightQuadsToEachRenderer) {
  const auto turning = [](double degrees) {  // the upper edge turns by so much in its middle
    const double y = 50 * std::tan(degrees * kPi / 180);
    return std::array<std::array<double, 2>, 4>{{{0, 40}, {50, 40}, {100, 40 + y}, {0, 200}}};
  };
  struct {
    std::array<std::array<double, 2>, 4> corners;
    bool bilinear;
  } const cases[] = {
      {{{{0, 0}, {100, 0}, {100, 80}, {0, 80}}}, false},
      {{{{0, 0}, {0, 80}, {100, 80}, {100, 0}}}, false},  // the other way round
      {{{{100, 0}, {0, 0}, {100, 80}, {0, 80}}}, true},   // self-crossing
      {{{{0, 0}, {100, 0}, {30, 30}, {0, 80}}}, true},    // concave
      {{{{0, 0}, {0, 0}, {100, 80}, {0, 80}}}, true},     // neighbours coincide
      {{{{0, 0}, {100, 0}, {0, 0}, {0, 80}}}, true},      // opposite corners coincide
      {{{{0, 0}, {50, 0}, {100, 0}, {0, 80}}}, true},     // straight
      {turning(8), true},
      {turning(8.2), false},
      {turning(10), false},
  };
  for (const auto& c : cases) {
    ScriptedHost host(8, {100, 80});
    double corners[4][2];
    for (std::size_t i = 0; i < 4; ++i) {
      corners[i][0] = c.corners[i][0];
      corners[i][1] = c.corners[i][1];
    }
    host.setCorners(corners);
    EXPECT_EQ(UseBilinear(&host.in, &host.out, &host.input.world), c.bilinear)
        << corners[0][0] << " " << corners[1][0] << " " << corners[2][0] << " " << corners[2][1];
    EXPECT_EQ(host.log, kReadCorners);
    EXPECT_TRUE(host.outIs());
  }
  ScriptedHost host(8, {100, 80});
  // Unit edges come from the host's square root: with this one they stay as they are, and 1 * 1 + 0 * 3 looks straight.
  host.setCorners({{0, 0}, {1, 0}, {2, 3}, {0, 4}});
  EXPECT_FALSE(UseBilinear(&host.in, &host.out, &host.input.world));
  host.squareRoot = [](double) { return 1e-12; };
  EXPECT_TRUE(UseBilinear(&host.in, &host.out, &host.input.world));
  host.setCorners({{0, 0}, {100, 0}, {100, 80}, {0, 80}});
  EXPECT_FALSE(UseBilinear(&host.in, &host.out, &host.input.world));
  host.fail("checkout_param", 1, 9, true);
  EXPECT_TRUE(UseBilinear(&host.in, &host.out, &host.input.world));
}
