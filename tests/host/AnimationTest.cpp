#include "host/Animation.h"

#include <cmath>
#include <limits>

#include "host/frames/FrameParameters.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

TEST(AnimatedPointTest, InterpolatesBetweenKeysAndHoldsOutside) {
  const std::vector<AnimatedPoint::Key> keys{{2.0, {10, 0}}, {1.0, {0, 100}}, {2.0, {20, 0}}};
  const AnimatedPoint linear(keys, Interpolation::Linear);
  EXPECT_EQ((Point{0, 100}), linear.at(-5.0));
  EXPECT_EQ((Point{0, 100}), linear.at(1.0));
  EXPECT_EQ((Point{5, 75}), linear.at(1.25));
  EXPECT_EQ((Point{20, 0}), linear.at(2.0)) << "of two keys at one time the later in the list wins";
  EXPECT_EQ((Point{20, 0}), linear.at(99.0));
  const AnimatedPoint held(keys, Interpolation::Hold);
  EXPECT_EQ((Point{0, 100}), held.at(1.999));
  EXPECT_EQ((Point{20, 0}), held.at(2.0));
  EXPECT_EQ((Point{0, 0}), AnimatedPoint().at(1.0));
  EXPECT_EQ((Point{3, 4}), AnimatedPoint(Point{3, 4}).at(-1.0));
}

TEST(ParameterTest, PixelsBecomeNearestFixedPointNumbers) {
  EXPECT_EQ(98304, fixedFromPixels(1.5));
  EXPECT_EQ(-98304, fixedFromPixels(-1.5));
  EXPECT_EQ(1, fixedFromPixels(0.6 / 65536));
  EXPECT_EQ(std::numeric_limits<std::int32_t>::max(), fixedFromPixels(32767.9999999));
  EXPECT_EQ(std::numeric_limits<std::int32_t>::min(), fixedFromPixels(-1e300));
  EXPECT_EQ(std::numeric_limits<std::int32_t>::min(), fixedFromPixels(std::nan("")));
}

}  // namespace
}  // namespace vantorel::host
