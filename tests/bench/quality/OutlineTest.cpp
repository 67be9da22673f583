#include "bench/quality/Outline.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/Pixels.h"

namespace vantorel::quality {
namespace {

constexpr Ring kTurned = {{{12.3, 2.6}, {30.1, 14.9}, {17.2, 33.4}, {1.7, 19.8}}};

TEST(Outline, OfWholePixelsHasNoEdgePixels) {
  const Ring square = {{{3, 4}, {9, 4}, {9, 8}, {3, 8}}};
  const host::Rect frame = frameOf(square, {20, 20});
  EXPECT_EQ(frame, (host::Rect{3, 4, 9, 8}));
  for (const Region region : regionsOf(square, {0, 0, 20, 20})) {
    EXPECT_NE(region, Region::Edge);
  }
  EXPECT_EQ(std::ranges::count(regionsOf(square, frame), Region::Inside), 24);
}

TEST(Outline, RegionsSayWhatIsPartlyCovered) {
  const host::Rect canvas{0, 0, 40, 40};
  const std::vector<Region> regions = regionsOf(kTurned, canvas);
  for (const auto [x, y] : pixelsOf(canvas)) {
    const double area = coverage(kTurned, x, y);
    const Region expected = area < 1e-12 ? Region::Outside : area > 1 - 1e-12 ? Region::Inside : Region::Edge;
    EXPECT_EQ(regions[static_cast<std::size_t>(y * 40 + x)], expected) << x << ", " << y << ": " << area;
  }
}

TEST(Outline, CoverageAddsUpToTheArea) {
  double sum = 0;
  for (const auto [x, y] : pixelsOf(40, 40)) {
    sum += coverage(kTurned, x, y);
  }
  double doubled = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    const host::Point& from = kTurned[i];
    const host::Point& to = kTurned[(i + 1) % 4];
    doubled += from.x * to.y - to.x * from.y;
  }
  EXPECT_NEAR(sum, doubled / 2, 1e-9);
}

}  // namespace
}  // namespace vantorel::quality
