#include "host/geometry/ScanChains.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace vantorel::host {
namespace {

// Round the quadrilateral from its highest corner on; no two corners are equally high.
constexpr std::array<Point, 4> kRing{{{10, 0}, {30, 8}, {22, 30}, {-4, 20}}};

// Where a row cuts the outline, by the definition.
Box cutAt(double y) {
  Box cut{1e9, y, -1e9, y};
  for (std::size_t i = 0; i < 4; ++i) {
    const Point& p = kRing[i];
    const Point& q = kRing[(i + 1) % 4];
    if (std::min(p.y, q.y) <= y && y < std::max(p.y, q.y)) {
      const double x = p.x + (q.x - p.x) * (y - p.y) / (q.y - p.y);
      cut.left = std::min(cut.left, x);
      cut.right = std::max(cut.right, x);
    }
  }
  return cut;
}

TEST(ScanChainsTest, SpansAreTheOutlinesWhicheverCornerIsOnTop) {
  for (std::size_t first = 0; first < 4; ++first) {
    for (const bool mirrored : {false, true}) {
      const auto at = [&](std::size_t i) { return kRing[mirrored ? (first + 4 - i) % 4 : (first + i) % 4]; };
      const ScanChains chains({at(0), at(1), at(3), at(2)});
      double y = 0.0;
      for (const ScanBand& band : chains.bands()) {
        EXPECT_EQ(band.top, y);
        y = band.bottom;
        for (const double inside : {band.top, (band.top + band.bottom) / 2}) {
          const double a = chains.xAt(band.a, inside);
          const double b = chains.xAt(band.b, inside);
          EXPECT_NEAR(std::min(a, b), cutAt(inside).left, 1e-12) << first << ' ' << inside;
          EXPECT_NEAR(std::max(a, b), cutAt(inside).right, 1e-12) << first << ' ' << inside;
        }
      }
      EXPECT_EQ(y, 30.0) << first << ' ' << mirrored;
    }
  }
}

TEST(ScanChainsTest, TheShortestStepIsThatOfTheDirectionThatShrinksLeast) {
  const Corners upright{{3, 2}, {53, 2}, {3, 22}, {53, 22}};
  EXPECT_NEAR(2.0, ScanChains(upright).shortestStep(100, 80), 1e-6);
  const double half = 50 * std::sqrt(0.5);  // a square of 100 pixels turned by 45 degrees and shrunk 2 times
  const Corners turned{{half, 0}, {2 * half, half}, {0, half}, {half, 2 * half}};
  EXPECT_NEAR(2.0, ScanChains(turned).shortestStep(100, 100), 1e-6);
  EXPECT_NEAR(1.0, ScanChains(turned).shortestStep(50, 100), 1e-6);
  EXPECT_EQ(std::numeric_limits<double>::infinity(), ScanChains({{1, 5}, {2, 5}, {3, 5}, {4, 5}}).shortestStep(9, 9));
}

}  // namespace
}  // namespace vantorel::host
