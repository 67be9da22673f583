#include "effect/perspective/IncrementalMap.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

bool sameBits(double a, double b) {
  return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

// A number of any bits, of few bits so that rests of steps come out as halves of a last digit, or beside a power of
// two.
double someNumber(int exponent) {
  const double bits = std::ldexp(*rc::gen::arbitrary<std::int32_t>(), -31);
  switch (*rc::gen::inRange(0, 4)) {
    case 0:
      return std::ldexp(bits + std::ldexp(*rc::gen::inRange(0, 1 << 20), -52), exponent);
    case 1:
      return std::ldexp(std::round(bits * 16.0), exponent - 4);
    case 2:
      return std::copysign(std::ldexp(1.0 + std::ldexp(*rc::gen::inRange(-40, 41), -52), exponent), bits);
    default:
      return *rc::gen::element(0.0, -0.0, 1e-310, HUGE_VAL, std::nan(""), 1e300);
  }
}

}  // namespace

// Whether it passes over runs or not, a walk comes by the values that it would come by one by one.
RC_GTEST_PROP(RowWalk, EqualsItsStepsToTheBit, ()) {
  const int exponent = *rc::gen::inRange(-30, 30);
  const auto step_exponent = [&] { return exponent - *rc::gen::inRange(0, 60); };
  CoordinateWalk coordinate{someNumber(exponent), someNumber(step_exponent()), someNumber(step_exponent())};
  RowWalk along{coordinate, coordinate, coordinate};
  RowWalk round = along;
  CoordinateWalk stored = coordinate;
  double at_along = coordinate.at;
  double at_round = coordinate.at;
  for (int total = 0; total < 500;) {
    const int pixels = *rc::gen::inRange(1, 100);
    total += pixels;
    std::vector<double> values(static_cast<std::size_t>(pixels));
    storeAlong(&stored, pixels, values.data());
    for (const double value : values) {
      at_along += coordinate.right;
      RC_ASSERT(sameBits(value, at_along));
      const double centre = at_round + coordinate.right;
      at_round = centre + coordinate.right + coordinate.down - coordinate.right - coordinate.down;
    }
    walkAlong(&along, pixels);
    walkRound(&round, pixels);
    RC_ASSERT(sameBits(stored.at, at_along) && sameBits(along.u.at, at_along) && sameBits(along.w.at, at_along));
    RC_ASSERT(sameBits(round.u.at, at_round) && sameBits(round.w.at, at_round));
  }
}

TEST(RowWalk, PassesOverLongRunsAtOnce) {
  RowWalk walk{{1000.0, 0.1, 0.3}, {1.0, 0.0, 0.0}, {0.7, -1e-5, 1e-5}};
  EXPECT_GE(knownRun(&walk), 200);
  walk.u.at = 1023.0;  // ten steps before its exponent changes
  walk.u.run = 0;
  EXPECT_LT(knownRun(&walk), 20);
}
