#include "host/geometry/MonotoneCubic.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace vantorel::host {
namespace {

TEST(MonotoneCubicTest, StaysBetweenItsKnotsAndIsSmoothAcrossThem) {
  std::mt19937 random(5);
  std::uniform_real_distribution<double> step(0.5, 3.0);
  std::uniform_real_distribution<double> value(-9.0, 9.0);
  for (int i = 0; i < 500; ++i) {
    CubicInterval::Knot knots[5];
    double time = 0.0;
    for (CubicInterval::Knot& knot : knots) {
      knot = {time += step(random), value(random)};
    }
    const CubicInterval first{knots[0], knots[1], knots[2], knots[3], true, i % 2 == 0};
    const CubicInterval second{knots[1], knots[2], knots[3], knots[4], true, true};
    EXPECT_DOUBLE_EQ(knots[1].value, first.at(knots[1].time));
    EXPECT_DOUBLE_EQ(knots[2].value, first.at(knots[2].time));
    const auto [low, high] = std::minmax(knots[1].value, knots[2].value);
    for (int k = 0; k <= 40; ++k) {
      const double at = first.at(knots[1].time + (knots[2].time - knots[1].time) * k / 40);
      EXPECT_GE(at, low - 1e-12);
      EXPECT_LE(at, high + 1e-12);
    }
    if (first.has_after) {
      const double h = 1e-6;
      const double left = (first.at(knots[2].time) - first.at(knots[2].time - h)) / h;
      const double right = (second.at(knots[2].time + h) - second.at(knots[2].time)) / h;
      EXPECT_NEAR(left, right, 1e-3 * (1.0 + std::abs(left)));
    }
  }
}

TEST(MonotoneCubicTest, DrawsAStraightLineThroughKnotsOnOne) {
  const CubicInterval line{{0, 1}, {1, 3}, {4, 9}, {5, 11}, true, true};
  EXPECT_DOUBLE_EQ(6.0, line.at(2.5));
  const CubicInterval alone{{}, {1, 3}, {4, 9}, {}, false, false};
  EXPECT_DOUBLE_EQ(6.0, alone.at(2.5));
}

}  // namespace
}  // namespace vantorel::host
