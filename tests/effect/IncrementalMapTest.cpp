#include "effect/perspective/IncrementalMap.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "effect/perspective/PixelBatch.h"
#include "tests/InstructionSets.h"

namespace {

bool sameBits(double a, double b) {
  return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

// A number of any bits, one of few bits, so that steps leave remainders of half a last digit, or one beside a power of
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

// Whether it takes a range at once or not, the map has the values that it would have step by step.
RC_GTEST_PROP(IncrementalMap, EqualsItsStepsToTheBit, ()) {
  const int exponent = *rc::gen::inRange(-30, 30);
  const auto step_exponent = [&] { return exponent - *rc::gen::inRange(0, 60); };
  Stepper start{someNumber(exponent), someNumber(step_exponent()), someNumber(step_exponent())};
  start.wanted = *rc::gen::inRange(0, 300);
  IncrementalMap along{start, start, start};
  IncrementalMap visiting = along;
  Stepper stored = start;
  double at_along = start.at;
  double at_visiting = start.at;
  for (int total = 0; total < 500;) {
    const int pixels = *rc::gen::inRange(1, 100);
    total += pixels;
    std::vector<double> values(static_cast<std::size_t>(pixels));
    storeValues(&stored, pixels, values.data());
    for (const double value : values) {
      at_along += start.right;
      RC_ASSERT(sameBits(value, at_along));
      const double centre = at_visiting + start.right;
      at_visiting = centre + start.right + start.down - start.right - start.down;
    }
    advance(&along, pixels);
    advanceVisitingNeighbours(&visiting, pixels);
    RC_ASSERT(sameBits(stored.at, at_along) && sameBits(along.u.at, at_along) && sameBits(along.w.at, at_along));
    RC_ASSERT(sameBits(visiting.u.at, at_visiting) && sameBits(visiting.w.at, at_visiting));
  }
}

// Batches too leave the map where single steps would, however they find its ranges.
RC_GTEST_PROP(IncrementalMap, EqualsItsStepsToTheBitInBatches, ()) {
  const int exponent = *rc::gen::inRange(-30, 30);
  const int wanted = *rc::gen::inRange(0, 300);
  const auto some_stepper = [&] {
    // Half of them are so small that the exponent may or may not change, and odd ones round to even.
    const auto step = [&] {
      return *rc::gen::arbitrary<bool>() ? std::ldexp(*rc::gen::inRange(-20, 21), exponent - 53)
                                         : someNumber(exponent - *rc::gen::inRange(5, 60));
    };
    Stepper stepper{someNumber(exponent), step(), step()};
    stepper.wanted = wanted;
    return stepper;
  };
  const IncrementalMap start{some_stepper(), some_stepper(), some_stepper()};
  for (const InstructionSet set : availableSets()) {
    const PixelBatchFunctions& functions = pixelBatchFunctions(set);
    IncrementalMap along = start;
    IncrementalMap visiting = start;
    PixelBatch batch;
    bool any_at_infinity = false;  // these do not visit their neighbours
    for (int i = 0; i < 3; ++i) {
      functions.positions(&along, {1.0, 1.0}, kBatchPixels, &batch);
      any_at_infinity = functions.footprints(&visiting, {1.0, 1.0}, kBatchPixels, &batch) || any_at_infinity;
    }
    for (const auto coordinate : {&IncrementalMap::u, &IncrementalMap::v, &IncrementalMap::w}) {
      const Stepper& stepper = start.*coordinate;
      double at_along = stepper.at;
      double at_visiting = stepper.at;
      for (int i = 0; i < 3 * kBatchPixels; ++i) {
        at_along += stepper.right;
        const double centre = at_visiting + stepper.right;
        at_visiting = centre + stepper.right + stepper.down - stepper.right - stepper.down;
      }
      RC_ASSERT(sameBits((along.*coordinate).at, at_along));
      RC_ASSERT(any_at_infinity || sameBits((visiting.*coordinate).at, at_visiting));
    }
  }
}

// The neighbours below lie beyond a power of two, where every other value of the row is rounded.
TEST(IncrementalMap, NeighboursBelowOfAnotherExponentAreSteppedTo) {
  for (const double side : {1.0, -1.0}) {
    const Stepper stepper{side * 1.5, side * 0x1p-52, side * 0.75};
    double at = stepper.at;
    for (int i = 0; i < kBatchPixels; ++i) {
      at = at + stepper.right + stepper.right + stepper.down - stepper.right - stepper.down;
    }
    ASSERT_NE(at, stepper.at + kBatchPixels * stepper.right);
    for (const InstructionSet set : availableSets()) {
      IncrementalMap map{stepper, stepper, stepper};
      map.u.wanted = map.v.wanted = map.w.wanted = 2 * kBatchPixels;
      PixelBatch batch;
      pixelBatchFunctions(set).footprints(&map, {1.0, 1.0}, kBatchPixels, &batch);
      EXPECT_TRUE(sameBits(map.u.at, at) && sameBits(map.w.at, at)) << side;
    }
  }
}

TEST(IncrementalMap, TakesLongRangesAtOnce) {
  IncrementalMap map{{1000.0, 0.1, 0.3}, {1.0, 0.0, 0.0}, {0.7, -1e-5, 1e-5}};
  EXPECT_GE(constantExponentRange(&map), 200);
  map.u.at = 1023.0;  // ten steps before its exponent changes
  map.u.range = 0;
  EXPECT_LT(constantExponentRange(&map), 20);
}
