#include "host/composing/PathChoice.h"

#include <cmath>
#include <random>

#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

// Corners of every kind: any, on a coarse grid where many coincide or lie on lines, and nearly straight ones.
Corners randomCorners(std::mt19937& random) {
  std::uniform_real_distribution<double> any(0.0, 30.0);
  const int kind = static_cast<int>(random() % 3);
  const auto point = [&] {
    const Point p{any(random), any(random)};
    return kind == 1 ? Point{std::floor(p.x / 10), std::floor(p.y / 10)} : p;
  };
  Corners corners{point(), point(), point(), point()};
  if (kind == 2) {
    const double bend = any(random) / 10.0 - 1.5;
    corners = {{0, 0}, {20, 0}, {10 + bend, 10 - bend}, {20, 20}};
  }
  return corners;
}

TEST(PathChoiceTest, IsTheModulesOwn) {
  std::mt19937 random(11);
  Image layer = noise({30, 30}, Depth::Bits8);
  int bilinear = 0;
  for (int i = 0; i < 2000; ++i) {
    const Corners corners = randomCorners(random);
    Instance instance = instanceWith(corners);
    const auto frame = renderFrame(instance, layer, {0, 0, 30, 30}, {.placement = Placement::Centres, .threads = 1});
    ASSERT_FALSE(frame.result.drawn.empty());
    ASSERT_EQ(frame.result.path, pathOf(corners))
        << ::testing::PrintToString(corners.upper_left) << ::testing::PrintToString(corners.upper_right)
        << ::testing::PrintToString(corners.lower_left) << ::testing::PrintToString(corners.lower_right);
    bilinear += frame.result.path == RenderPath::Bilinear;
  }
  EXPECT_GT(bilinear, 500);
  EXPECT_LT(bilinear, 1900);
}

}  // namespace
}  // namespace vantorel::host
