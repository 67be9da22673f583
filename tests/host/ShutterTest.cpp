#include "host/composing/Shutter.h"

#include <cmath>
#include <numeric>

#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

constexpr Corners kQuad{{20, 15}, {120, 22}, {15, 90}, {110, 100}};

Corners moved(const Corners& c, double x, double y) {
  const auto move = [&](const Point& p) { return Point{p.x + x, p.y + y}; };
  return {move(c.upper_left), move(c.upper_right), move(c.lower_left), move(c.lower_right)};
}

// Corners that move from one to the other in the two seconds around time 0.
AnimatedCorners between(const Corners& begin, const Corners& end) {
  return moving(begin, end, -1.0, 1.0);
}

// A frame of one second, so that 360 degrees are half the way.
FrameOptions shutter(double degrees, int max_samples = 64) {
  FrameOptions options{.quality = Quality::Best};
  options.time.scale = 1;
  options.shutter = {.degrees = degrees, .max_samples = max_samples};
  return options;
}

std::vector<double> momentsWith(const AnimatedCorners& corners, const FrameOptions& options) {
  std::vector<double> moments;
  momentsOf(corners, nullptr, options, &moments);
  return moments;
}

TEST(ShutterTest, TakesAboutOneMomentAPixelCentredOnTheFrame) {
  const AnimatedCorners corners = between(kQuad, moved(kQuad, 80, 0));  // 40 pixels a second
  const std::vector<double> half = momentsWith(corners, shutter(180));
  EXPECT_EQ(16U, half.size());
  EXPECT_NEAR(0.0, std::accumulate(half.begin(), half.end(), 0.0), 1e-12);
  EXPECT_NEAR(-0.25 + 0.015625, half.front(), 1e-12);
  EXPECT_EQ(8U, momentsWith(corners, shutter(10)).size());
  EXPECT_EQ(16U, momentsWith(corners, shutter(720, 16)).size());
  FrameOptions later = shutter(180);
  later.shutter.offset = 0.0;
  EXPECT_NEAR(0.015625, momentsWith(corners, later).front(), 1e-12);
  EXPECT_EQ(1U, momentsWith(corners, shutter(0)).size());
  EXPECT_EQ(1U, momentsWith(between(kQuad, kQuad), shutter(180)).size());
  EXPECT_EQ(2, samplesOfMoment(2, 8));
  EXPECT_EQ(1, samplesOfMoment(2, 20));
  EXPECT_EQ(2, samplesOfMoment(4, 20));
}

TEST(ShutterTest, AMoveOfTwentyPixelsIsNearThatOfManyMoments) {
  Image layer = waves({160, 120}, Depth::Bits8, 24);
  Instance instance = instanceWith(effect(), kQuad);
  ASSERT_TRUE(instance.setCorners(between(kQuad, moved(kQuad, 72, 34))));
  const Frame few = renderFrame(instance, layer, {0, 0, 200, 140}, shutter(180));
  Image mean = dirty({200, 140}, Depth::Float);
  mean.clear();
  constexpr int kStills = 256;
  for (int i = 0; i < kStills; ++i) {
    const double share = 0.375 + 0.25 * (i + 0.5) / kStills;
    ASSERT_TRUE(instance.setCorners(moved(kQuad, 72 * share, 34 * share)));
    const Frame still = renderFrame(instance, layer, {0, 0, 200, 140}, shutter(0));
    for (const auto [x, y, c] : channelsOf(200, 140)) {
      setChannel(mean.view(), x, y, c, channelAt(mean, x, y, c) + channelAt(still.pixels, x, y, c) / kStills);
    }
  }
  EXPECT_GE(psnr(few.pixels, mean), 40.0);
}

TEST(ShutterTest, WithoutMotionItIsTheStillToTheBitAndItsBoxGrowsWithTheMotion) {
  Image layer = noise({60, 50}, Depth::Bits16);
  Instance instance = instanceWith(kQuad);
  const auto still = renderFrame(instance, layer, {0, 0, 140, 120}, shutter(0));
  const auto open = renderFrame(instance, layer, {0, 0, 140, 120}, shutter(360));
  EXPECT_TRUE(samePixels(still.pixels, open.pixels));
  ASSERT_TRUE(instance.setCorners(between(moved(kQuad, -100, 0), moved(kQuad, 100, 0))));
  const Rect small = instance.boundingBox({60, 50}, shutter(0)).value();
  const Rect wide = instance.boundingBox({60, 50}, shutter(360)).value();
  EXPECT_NEAR(small.left - 50, wide.left, 2);
  EXPECT_NEAR(small.right + 50, wide.right, 2);
  EXPECT_EQ(small.top, wide.top);
}

}  // namespace
}  // namespace vantorel::host
