#include "host/geometry/Homography.h"

#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

constexpr Corners kQuad{{12, 7}, {180, 30}, {25, 140}, {150, 110}};

void expectNear(const Point& expected, const Point& actual) {
  EXPECT_NEAR(expected.x, actual.x, 1e-9);
  EXPECT_NEAR(expected.y, actual.y, 1e-9);
}

TEST(HomographyTest, TakesCornersToCornersAndBack) {
  const Homography map = Homography::ofRectangle(64, 48, kQuad).value();
  const Homography back = map.inverse().value();
  const Corners layer = rectangle(0, 0, 64, 48);
  for (std::size_t i = 0; i < kCornerCount; ++i) {
    expectNear(kQuad[i], map(layer[i]));
    expectNear(layer[i], back(kQuad[i]));
  }
  // The crossing of the diagonals is the middle.
  const Homography square = Homography::ofQuadrilateral(kQuad, rectangle(0, 0, 1, 1)).value();
  expectNear({0.5, 0.5}, square(map(Point{32, 24})));
  EXPECT_GT(back.weight(map(Point{1, 47})), 0.0);
  const Homography unchanged = map * back;
  for (std::size_t i = 0; i < unchanged.m.size(); ++i) {
    EXPECT_NEAR(i % 4 == 0 ? 1.0 : 0.0, unchanged.m[i], 1e-9) << i;
  }
  Homography onto_a_line;
  onto_a_line.m = {1, 2, 3, 2, 4, 6, 0, 0, 1};
  EXPECT_FALSE(onto_a_line.inverse());
}

TEST(HomographyTest, ItsDerivativeIsThatOfSmallSteps) {
  const Homography map = Homography::ofRectangle(64, 48, kQuad).value();
  const Homography twice = map * map;
  const Point p{20, 31};
  const double h = 1e-5;
  const Jacobian j = twice.derivative(p);
  expectNear(map(map(p)), twice(p));
  EXPECT_NEAR((twice(Point{p.x + h, p.y}).x - twice(Point{p.x - h, p.y}).x) / (2 * h), j.xx, 1e-6);
  EXPECT_NEAR((twice(Point{p.x, p.y + h}).x - twice(Point{p.x, p.y - h}).x) / (2 * h), j.xy, 1e-6);
  EXPECT_NEAR((twice(Point{p.x + h, p.y}).y - twice(Point{p.x - h, p.y}).y) / (2 * h), j.yx, 1e-6);
  EXPECT_NEAR((twice(Point{p.x, p.y + h}).y - twice(Point{p.x, p.y - h}).y) / (2 * h), j.yy, 1e-6);
}

TEST(HomographyTest, RefusesWhatIsNotStrictlyConvex) {
  EXPECT_FALSE(Homography::ofRectangle(1, 1, {{0, 0}, {10, 0}, {0, 10}, {2, 2}}));    // a notch
  EXPECT_FALSE(Homography::ofRectangle(1, 1, {{0, 0}, {10, 0}, {10, 10}, {0, 10}}));  // crossed
  EXPECT_FALSE(Homography::ofRectangle(1, 1, {{0, 0}, {10, 0}, {0, 10}, {5, 5}}));    // three on a line
  EXPECT_FALSE(Homography::ofRectangle(1, 1, {{3, 3}, {3, 3}, {3, 3}, {3, 3}}));
  EXPECT_FALSE(Homography::ofRectangle(0, 1, kQuad));
  EXPECT_FALSE(Homography::ofQuadrilateral({{0, 0}, {10, 0}, {0, 10}, {2, 2}}, kQuad));
}

}  // namespace
}  // namespace vantorel::host
