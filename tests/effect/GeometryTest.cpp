#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <array>
#include <cmath>

#include "effect/CornerGeometry.h"
#include "effect/PathChoice.h"
#include "effect/ProjectiveMap.h"
#include "tests/effect/ScriptedHost.h"

namespace {

using Point = M_Vector2T<double>;
using Quad = std::array<Point, 4>;

void expectQuad(const Point* p, const Quad& expected, double tolerance) {
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_NEAR(p[i].x, expected[i].x, tolerance) << i;
    EXPECT_NEAR(p[i].y, expected[i].y, tolerance) << i;
  }
}

void expectMap(Quad quad, unsigned char to_quad, const double (&rows)[3][3]) {
  M_Matrix3 m(false);
  EXPECT_EQ(KZFX_MapUnitSquareToFromQuad(quad.data(), &m, to_quad), 1);
  for (int i = 0; i < 9; ++i) {
    EXPECT_NEAR(m.m[i / 3][i % 3], rows[i / 3][i % 3], 1e-13) << i;
  }
}

// Whether there is an inverse; checks that the output is left alone when there is none.
bool inverseExists(Quad q) {
  M_Matrix3 m(true);
  m.m[2][2] = 77.0;
  const bool exists = KZFX_MapUnitSquareToFromQuad(q.data(), &m, 0) != 0;
  EXPECT_EQ(m.m[2][2], exists ? 1.0 : 77.0);
  return exists;
}

// A convex quadrilateral somewhere in the plane: a rectangle whose corners have moved by up to three tenths.
Quad someConvexQuad() {
  const auto about = [](double middle, double reach) { return middle + reach * *rc::gen::inRange(-300, 301) / 300.0; };
  const double x = about(0, 3000), y = about(0, 3000), w = about(100, 90), h = about(100, 90);
  Quad q = {{{0, 0}, {1, 0}, {1, 1}, {0, 1}}};
  for (Point& p : q) {
    p = {x + w * about(p.x, 0.3), y + h * about(p.y, 0.3)};
  }
  return q;
}

}  // namespace

TEST(ProjectiveMap, WorkedMatrices) {
  expectMap({{{0, 0}, {1, 0}, {1, 1}, {0, 1}}}, 0, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
  expectMap({{{0, 0}, {1, 0}, {1, 1}, {0, 1}}}, 1, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
  const Quad rectangle = {{{10, 20}, {110, 20}, {110, 70}, {10, 70}}};
  expectMap(rectangle, 1, {{100, 0, 0}, {0, 50, 0}, {10, 20, 1}});
  expectMap(rectangle, 0, {{0.01, 0, 0}, {0, 0.02, 0}, {-0.1, -0.4, 1}});
  expectMap({{{0, 0}, {100, 0}, {80, 50}, {20, 50}}}, 1, {{100, 0, 0}, {100 / 3.0, 250 / 3.0, 2 / 3.0}, {0, 0, 1}});
  // Three collinear corners: finite, with 0.0001 for the divisor.
  expectMap({{{20, 0}, {0, 0}, {0, 10}, {0, 20}}}, 1, {{-20, 0, 2e6}, {-20, 4e7 + 20, 2e6}, {20, 0, 1}});
}

TEST(ProjectiveMap, InverseExistsForProperQuadsAlone) {
  EXPECT_TRUE(inverseExists({{{-32768, -32768}, {-32767.5, -32768}, {-32767.5, -32767.5}, {-32768, -32767.5}}}));
  EXPECT_TRUE(inverseExists({{{30000, 30000}, {30001, 30000}, {30001, 30001}, {30000, 30001}}}));
  EXPECT_TRUE(inverseExists({{{0, 0}, {100, 0}, {30, 30}, {0, 100}}}));  // concave
  EXPECT_TRUE(inverseExists({{{0, 0}, {4e-9, 0}, {4e-9, 6e7}, {0, 6e7}}}));
  EXPECT_FALSE(inverseExists({{{5, 5}, {5, 5}, {5, 5}, {5, 5}}}));
  EXPECT_FALSE(inverseExists({{{0, 0}, {10, 0}, {20, 0}, {0, 10}}}));
  EXPECT_FALSE(inverseExists({{{20, 0}, {0, 0}, {0, 10}, {0, 20}}}));
  // In line but for the rounding of their coordinates.
  EXPECT_FALSE(inverseExists({{{30000.1, 20000.2}, {30001.2, 20001.3}, {30002.3, 20002.4}, {0, 10}}}));
  EXPECT_FALSE(inverseExists({{{0, 0}, {std::nan(""), 0}, {9, 9}, {0, 9}}}));
  // The sides of this one meet in the origin, which therefore maps to infinity.
  EXPECT_FALSE(inverseExists({{{-1, 1}, {1, 1}, {2, 2}, {-2, 2}}}));
  Quad collinear = {{{20, 0}, {0, 0}, {0, 10}, {0, 20}}};
  Quad square = {{{0, 0}, {1, 0}, {1, 1}, {0, 1}}};
  M_Matrix3 m(true);
  EXPECT_EQ(MapQuadToQuadFloat(collinear.data(), square.data(), &m), 1);
  EXPECT_EQ(MapQuadToQuadFloat(square.data(), collinear.data(), &m), 0);
}

TEST(ProjectiveMap, PointsAtInfinityStopTheTransform) {
  M_Matrix3 m(true);
  m.m[0][2] = -1.0;                           // w = 1 - x
  constexpr double kNearlyOne = 1.0 - 1e-13;  // whose w counts as 0
  Quad p = {{{0.5, 1e-13}, {kNearlyOne, 5.0}, {0.25, 0.25}, {0, 0}}};
  EXPECT_EQ(HomogeneouslyTransformFloatPoints(&m, 4, p.data()), 1);
  expectQuad(p.data(), {{{1.0, 0.0}, {kNearlyOne, 5.0}, {0.25, 0.25}, {0, 0}}}, 0.0);  // 2e-13 counts as 0
  EXPECT_EQ(HomogeneouslyTransformFloatPoints(&m, -1, &p[1]), 0);
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
  Point inside = {(from[0].x + from[2].x) / 2, (from[0].y + from[2].y) / 2};
  const Point start = inside;
  RC_ASSERT(HomogeneouslyTransformFloatPoints(&m, 4, there.data()) == 0);
  RC_ASSERT(HomogeneouslyTransformFloatPoints(&m, 1, &inside) == 0);
  RC_ASSERT(HomogeneouslyTransformFloatPoints(&inverse, 1, &inside) == 0);
  RC_ASSERT(std::hypot(inside.x - start.x, inside.y - start.y) < 1e-4);
  for (std::size_t i = 0; i < 4; ++i) {
    RC_ASSERT(std::hypot(there[i].x - to[i].x, there[i].y - to[i].y) < 1e-4);
  }
}

TEST(CornerPoints, CarryTheWholeBuffer) {
  ScriptedHost host(8, {100, 80});
  Point p[4];
  host.in.output_origin_x = 10;
  host.in.output_origin_y = -20;
  host.setCorners({{1, 2}, {90.5, 3}, {95, 70}, {0, 75}});
  EXPECT_EQ(GetCornerPoints(&host.in, &host.out, &host.input.world, p), 0);
  expectQuad(p, {{{11, -18}, {100.5, -17}, {105, 50}, {10, 55}}}, 1e-9);

  // Half resolution, and a buffer that is larger than the layer and offset from it. The quadrilateral is twice as wide
  // as the layer's 50 x 40.
  host.in.output_origin_x = host.in.output_origin_y = 0;
  host.in.downsample_x_den = host.in.downsample_y_den = 2;
  host.in.source_origin_x = 5;
  host.in.source_origin_y = 3;
  host.input.world.width = 70;
  host.input.world.height = 60;
  host.setCorners({{0, 0}, {100, 0}, {100, 40}, {0, 40}});
  EXPECT_EQ(GetCornerPoints(&host.in, &host.out, &host.input.world, p), 0);
  expectQuad(p, {{{-10, -3}, {130, -3}, {130, 57}, {-10, 57}}}, 1e-9);

  // Errors: the parameter read's own, then 1 for a layer without a map. The buffer's own corners stay.
  host.fail("checkin_param", 11, 66);
  EXPECT_EQ(GetCornerPoints(&host.in, &host.out, &host.input.world, p), 66);
  expectQuad(p, {{{0, 0}, {70, 0}, {70, 60}, {0, 60}}}, 0.0);
  host.in.width = 0;
  EXPECT_EQ(GetCornerPoints(&host.in, &host.out, &host.input.world, p), 1);
  expectQuad(p, {{{0, 0}, {70, 0}, {70, 60}, {0, 60}}}, 0.0);

  // The product wraps at 32 bits, the denominator is unsigned, and a size has its fraction.
  host.in.width = host.in.height = host.in.downsample_x_num = host.in.downsample_y_num = 65537;
  host.in.downsample_x_den = 0x80000000u;
  EXPECT_EQ(scaledLayerSize(&host.in).width, 131073 / 2147483648.0);
  EXPECT_EQ(scaledLayerSize(&host.in).height, 131073 / 2.0);
  EXPECT_TRUE(host.outIs());
}

TEST(PathChoice, CcwIsExact) {
  const double cases[][7] = {{0, 0, 1, 0, 1, 1, 1},   {0, 0, 1, 0, 1, -1, -1},   {0, 0, 1, 0, -1, 0, -1},
                             {0, 0, 0, 1, 0, -1, -1}, {0, 0, 1, 1, 2, 2, 1},     {0, 0, 2, 2, 1, 1, 0},
                             {0, 0, 3, 3, 3, 3, 0},   {4, 4, 4, 4, 5, 5, 1},     {4, 4, 5, 5, 4, 4, 0},
                             {0, 0, 0, 3, 0, 4, 1},   {0, 0, 0, .5, 0, .4, 0},   {0, 0, 3, 0, 4, 0, 1},
                             {0, 0, .5, 0, .4, 0, 0}, {0, 0, 1, 0, 1, 1e-300, 1}};
  for (const auto& c : cases) {
    Point p[3] = {{c[0], c[1]}, {c[2], c[3]}, {c[4], c[5]}};
    EXPECT_EQ(CCW(&p[0], &p[1], &p[2]), c[6]) << &c - cases;
  }
}

TEST(PathChoice, SendsTheRightQuadsToEachRenderer) {
  struct {
    double corners[4][2];
    bool bilinear;
  } const cases[] = {
      {{{0, 0}, {100, 0}, {100, 80}, {0, 80}}, false},
      {{{0, 0}, {0, 80}, {100, 80}, {100, 0}}, false},   // the other way round
      {{{100, 0}, {0, 0}, {100, 80}, {0, 80}}, true},    // self-crossing
      {{{70, 50}, {100, 0}, {100, 80}, {0, 80}}, true},  // concave, at each corner
      {{{0, 0}, {30, 50}, {100, 80}, {0, 80}}, true},
      {{{0, 0}, {100, 0}, {30, 30}, {0, 80}}, true},
      {{{0, 0}, {100, 0}, {100, 80}, {70, 30}}, true},
      {{{0, 0}, {0, 0}, {100, 80}, {0, 80}}, true},           // neighbours coincide
      {{{0, 0}, {100, 0}, {0, 0}, {0, 80}}, true},            // opposite corners coincide
      {{{0, 0}, {50, 0}, {100, 0}, {0, 80}}, true},           // straight
      {{{0, 40}, {50, 40}, {100, 47.027}, {0, 200}}, true},   // turns by 8 degrees
      {{{0, 40}, {50, 40}, {100, 47.205}, {0, 200}}, false},  // 8.2 degrees
      {{{0, 40}, {50, 40}, {100, 48.816}, {0, 200}}, false},  // 10 degrees
  };
  for (const auto& c : cases) {
    ScriptedHost host(8, {100, 80});
    host.setCorners(c.corners);
    EXPECT_EQ(UseBilinear(&host.in, &host.out, &host.input.world), c.bilinear) << &c - cases;
    EXPECT_EQ(host.log, kReadCorners);
  }
  // Unit edges come from the host's square root. Without it they stay as they are, and 1 * 1 + 0 * 3 looks straight.
  ScriptedHost host(8, {100, 80});
  host.setCorners({{0, 0}, {1, 0}, {2, 3}, {0, 4}});
  EXPECT_FALSE(UseBilinear(&host.in, &host.out, &host.input.world));
  host.square_root_factor = 1e-13;
  EXPECT_TRUE(UseBilinear(&host.in, &host.out, &host.input.world));
  EXPECT_TRUE(host.outIs());
}
