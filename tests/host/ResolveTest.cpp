// Means of samples against the same in long double, pixel by pixel.
#include "host/composing/Resolve.h"

#include <algorithm>
#include <cmath>

#include "host/composing/SampleCount.h"
#include "host/composing/ScanEdges.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

TEST(ResolveTest, IsTheWeightedMeanRoundedToNearestAtEveryDepthAndCount) {
  constexpr Point kCut{3, 2};
  const CoverageRegion quad{ConvexPolygon(Corners{{2.3, 1.6}, {27.1, 4.4}, {5.5, 21.2}, {24.9, 16.3}})};
  const CoverageRegion sliver{ConvexPolygon(Corners{{2, 8.2}, {28, 8.6}, {2, 8.3}, {28, 8.9}})};
  for (const CoverageRegion& region : {quad, sliver, CoverageRegion()}) {
    for (const Depth depth : kDepths) {
      for (const int n : kSampleCounts) {
        const Image samples = noise({32 * n, 24 * n}, depth);
        Image output = dirty({29, 20}, depth);
        const CoverageRegion fine = region.onGrid({}, n);
        resolve(samples.view(), n, fine, static_cast<int>(kCut.x), static_cast<int>(kCut.y), output.view());
        for (const auto [x, y, c] : channelsOf(29, 20)) {
          double sum = 0.0;
          for (int k = 0; k < n * n; ++k) {
            const int sx = (x + 3) * n + k % n;
            const int sy = (y + 2) * n + k / n;
            sum += coverageOf(fine, sx, sy) * channelAt(samples, sx, sy, c);
          }
          const double mean = sum / (n * n);
          const double actual = channelAt(output, x, y, c);
          const double half = depth == Depth::Float ? 1e-6 : 0.5 + 1e-6;
          ASSERT_NEAR(mean, actual, half) << "pixel " << x << ", " << y << " of " << n << " samples";
        }
      }
    }
  }
}

TEST(ResolveTest, WithOneSampleLeavesTheInsideToTheBitAndWorksInPlace) {
  const CoverageRegion region{ConvexPolygon(Box{2, 1, 14, 9.5})};
  Image pixels = noise({16, 12}, Depth::Bits16);
  const Image before = noise({16, 12}, Depth::Bits16);
  resolve(asConst(pixels.view()), 1, region, 0, 0, pixels.view());
  for (const auto [x, y, c] : channelsOf(16, 12)) {
    const double whole = channelAt(before, x, y, c);
    const double share = x < 2 || x >= 14 || y < 1 || y > 9 ? 0.0 : y == 9 ? 0.5 : 1.0;
    EXPECT_EQ(std::floor(whole * share + 0.5), channelAt(pixels, x, y, c));
  }
}

// The clamped position is the nearest of a rectangle's: two apart in either direction, every neighbour is one.
TEST(ScanEdgesTest, EdgesTakeTheNearestPixelThatTheScanDrawsWholly) {
  Image drawn = dirty({40, 30}, Depth::Bits8);
  for (const auto [x, y] : pixelsOf(40, 30)) {
    setPixel<std::uint8_t>(drawn.view(), x, y, {std::uint8_t(x), std::uint8_t(y), 0, 255});
  }
  const CoverageRegion scanned = CoverageRegion::betweenChains(rectangle(10.5, 8.5, 14.5, 12.5));
  const CoverageRegion covered = CoverageRegion::betweenChains(rectangle(0, 0, 15.5, 29));
  extendScan(scanned, covered, {0, 0, 40, 30}, drawn.view());
  for (const auto [x, y] : pixelsOf(40, 30)) {
    const int near_x = std::clamp(x, 11, 13);
    const int near_y = std::clamp(y, 9, 11);
    const bool extends = x < 16 && std::abs(x - near_x) <= 2 && std::abs(y - near_y) <= 2;
    EXPECT_EQ(extends ? near_x : x, channelAt(drawn, x, y, 0)) << x << ", " << y;
    EXPECT_EQ(extends ? near_y : y, channelAt(drawn, x, y, 1)) << x << ", " << y;
    EXPECT_EQ(255, channelAt(drawn, x, y, 3)) << x << ", " << y;
  }
}

}  // namespace
}  // namespace vantorel::host
