#include "host/composing/SampleCount.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/composing/FramePlan.h"
#include "tests/Pixels.h"

namespace vantorel::host {
namespace {

Jacobian turned(double degrees, double scale) {
  const double a = degrees * M_PI / 180.0;
  return {scale * std::cos(a), -scale * std::sin(a), scale * std::sin(a), scale * std::cos(a)};
}

// The variance of the samples' filter along a direction, from the filter itself: box by box, sample by sample.
double measuredError(const Jacobian& j, int n, double angle) {
  const double ex = std::cos(angle);
  const double ey = std::sin(angle);
  // Of the middles of a pixel's `steps` by `steps` parts in the layer.
  const auto variance = [&](int steps) {
    double sum = 0.0;
    for (const auto [column, row] : pixelsOf(steps, steps)) {
      const double x = (column + 0.5) / steps - 0.5;
      const double y = (row + 0.5) / steps - 0.5;
      sum += std::pow(ex * (j.xx * x + j.xy * y) + ey * (j.yx * x + j.yy * y), 2);
    }
    return sum / (steps * steps);
  };
  const auto side = [&](double a, double b) {
    return std::min(16.0, std::max({std::abs(a) / n, std::abs(b) / n, std::abs(a + b) / n, 1.0}));
  };
  const double samples = variance(n) + ex * ex * (std::pow(side(j.xx, j.xy), 2) + 1) / 12 +
                         ey * ey * (std::pow(side(j.yx, j.yy), 2) + 1) / 12;
  const double truth = variance(200) + (ex * ex + ey * ey) / 6.0;
  return (samples - truth) / truth;
}

TEST(SampleCountTest, TheErrorIsThatOfTheFiltersInTheWorstDirection) {
  for (const Jacobian& j : {turned(30, 3), turned(0, 1.4), turned(45, 0.3), Jacobian{4, 1, 0.2, 0.7}, turned(20, 40)}) {
    for (const int n : {1, 2, 3, 4}) {
      double soft = 0.0;
      double sharp = 0.0;
      for (int i = 0; i < 180; ++i) {
        const double error = measuredError(j, n, i * M_PI / 180.0);
        soft = std::max(soft, error);
        sharp = std::max(sharp, -error);
      }
      const FilterError found = filterError(j, n);
      EXPECT_NEAR(soft, found.soft, 2e-3 * (1.0 + soft));
      EXPECT_NEAR(sharp, found.sharp, 2e-3);
    }
  }
}

TEST(SampleCountTest, UprightAndEnlargedPicturesNeedFewAndTurnedAndShrunkOnesMore) {
  EXPECT_EQ(1, samplesForFilter(turned(0, 0.25)));
  EXPECT_EQ(1, samplesForFilter(turned(30, 0.25)));
  EXPECT_EQ(2, samplesForFilter(turned(0, 1.4)));
  EXPECT_EQ(1, samplesForFilter(turned(0, 4)));
  EXPECT_EQ(1, samplesForFilter(turned(90, 8)));
  EXPECT_EQ(2, samplesForFilter(turned(30, 2)));
  EXPECT_EQ(3, samplesForFilter(turned(30, 6)));
  EXPECT_EQ(8, samplesForFilter(turned(10, 200)));  // beyond what the box reaches
}

TEST(SampleCountTest, StepsOfAtMostALayerPixel) {
  EXPECT_EQ(1, samplesForSteps(0.3));
  EXPECT_EQ(1, samplesForSteps(1.0));
  EXPECT_EQ(4, samplesForSteps(2.5));
  EXPECT_EQ(8, samplesForSteps(100.0));
}

TEST(SampleCountTest, AScanNeedsAsManyAsTheLayerIsShrunkWhereverItLies) {
  FrameOptions best;
  best.quality = Quality::Best;
  // Crossed; a quarter of the layer's size along one axis and half along the other.
  for (const auto& [width, height] : {std::pair{200.0, 400.0}, {400.0, 200.0}}) {
    for (const double at : {0.0, 5000.0}) {
      const Corners crossed{{at, at}, {at + width, at + height}, {at + width, at}, {at, at + height}};
      const FramePlan plan(crossed, {}, 800, 800, {800, 800}, best);
      ASSERT_EQ(RenderPath::Bilinear, plan.path);
      const int left = static_cast<int>(at + width / 2) - 4;
      const int top = static_cast<int>(at + height / 8) - 4;
      EXPECT_EQ(4, samplesFor(plan, {left, top, left + 8, top + 8}));
    }
  }
}

TEST(SampleCountTest, TheBoxIsTheSmallestWhereNoNeighbourLiesFartherThanALayerPixel) {
  EXPECT_TRUE(hasSmallestBox({1.0, 0.0, 0.0, 1.0}, 1));
  EXPECT_FALSE(hasSmallestBox({1.0, 0.0, 0.0, 1.01}, 1));
  EXPECT_TRUE(hasSmallestBox({1.0, 0.0, 0.0, 1.01}, 2));
  EXPECT_FALSE(hasSmallestBox({0.7, 0.7, -0.7, 0.7}, 1));  // the diagonal neighbour lies 1.4 to the right
  EXPECT_TRUE(hasSmallestBox({0.7, -0.7, 0.2, 0.1}, 1));
}

}  // namespace
}  // namespace vantorel::host
