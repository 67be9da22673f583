#include "effect/perspective/IncrementalMap.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

// How many pixels are stepped one by one before another range is searched for.
constexpr int kPixelsBetweenRanges = 4;
constexpr double kLongestRange = 1 << 20;

// The sign and exponent bits of a double.
std::uint64_t signAndExponent(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits >> 52;
}

double powerOfTwo(std::uint64_t exponent) {
  const std::uint64_t bits = exponent << 52;
  double power = 0.0;
  std::memcpy(&power, &bits, sizeof power);
  return power;
}

// Finds the constant-exponent range that starts at the current value.
//
// Let q be the value of the last bit (one ulp). A step is S, a multiple of q, plus a remainder of at most q / 2. All
// values are multiples of q, so value + step rounds to value + S unless the remainder is exactly q / 2 or the sum falls
// below the exponent's smallest number, where doubles are spaced more closely than q.
void findRange(Stepper* stepper) {
  stepper->range = 0;
  const double at = stepper->at;
  const std::uint64_t sign_and_exponent = signAndExponent(at);
  const std::uint64_t exponent = sign_and_exponent & 0x7FF;
  // q must be a normal number, and the next exponent's smallest number finite.
  if (exponent <= 52 || exponent >= 0x7FE) {
    return;
  }
  const double right = at + stepper->right - at;
  const double down = at + stepper->down - at;
  const double rest = std::max(std::abs(stepper->right - right), std::abs(stepper->down - down));
  if (!(2.0 * rest < powerOfTwo(exponent - 52))) {
    return;
  }
  const auto take_if_held = [&](int range) {
    // The neighbours of the last pixel lie a step beyond it.
    const double last = at + (range + 1.0) * right;
    const double low = std::min(at, last) + std::min(down, 0.0) - rest;
    const double high = std::max(at, last) + std::max(down, 0.0) + rest;
    const bool is_held = signAndExponent(low) == sign_and_exponent && signAndExponent(high) == sign_and_exponent;
    if (is_held) {
      stepper->range = range;
      stepper->increment = right;
    }
    return is_held;
  };
  if (stepper->wanted > 0 && take_if_held(stepper->wanted)) {
    return;
  }
  // The steps up to the value at which the exponent changes, less the reach of the neighbours below. Two steps are
  // subtracted for the neighbours on the right and for the rounding of this estimate.
  const bool grows = (at < 0.0) == (right < 0.0);
  const double end = std::copysign(powerOfTwo(grows ? exponent + 1 : exponent), at);
  const double reach = (right < 0.0) == (down < 0.0) ? down : 0.0;
  const double steps = right == 0.0 ? kLongestRange : std::min((end - at - reach) / right - 2.0, kLongestRange);
  if (steps >= 1.0) {
    take_if_held(static_cast<int>(steps));
  }
}

double nextPixel(const Stepper& stepper) {
  return stepper.at + stepper.right;
}

double nextPixelByNeighbours(const Stepper& stepper) {
  const double centre = stepper.at + stepper.right;
  return centre + stepper.right + stepper.down - stepper.right - stepper.down;
}

// Advances over whole ranges at once and over pixels between ranges one by one. `before_range(pixels)` is called before
// each range; `take_step()` takes a single step.
template <typename BeforeRange, typename TakeStep>
void advance(Stepper* stepper, int pixels, BeforeRange before_range, TakeStep take_step) {
  bool is_after_range = false;  // where the exponent is about to change
  while (pixels > 0) {
    if (stepper->range == 0 && !is_after_range) {
      findRange(stepper);
    }
    int taken = std::min(pixels, stepper->range);
    if (taken > 0) {
      before_range(taken);
      advanceInRange(stepper, taken);
      is_after_range = true;
    } else {
      is_after_range = false;
      taken = std::min(pixels, kPixelsBetweenRanges);
      for (int i = 0; i < taken; ++i) {
        take_step();
      }
    }
    pixels -= taken;
  }
}

template <typename Next>
void advance(Stepper* stepper, int pixels, Next next) {
  advance(
      stepper, pixels, [](int) {}, [&] { stepper->at = next(*stepper); });
}

int constantExponentRange(Stepper* stepper) {
  if (stepper->range == 0) {
    findRange(stepper);
  }
  return stepper->range;
}

}  // namespace

int constantExponentRange(IncrementalMap* map) {
  return std::min({constantExponentRange(&map->u), constantExponentRange(&map->v), constantExponentRange(&map->w)});
}

void advance(IncrementalMap* map, int pixels) {
  for (Stepper* stepper : {&map->u, &map->v, &map->w}) {
    advance(stepper, pixels, nextPixel);
  }
}

void advanceVisitingNeighbours(IncrementalMap* map, int pixels) {
  for (Stepper* stepper : {&map->u, &map->v, &map->w}) {
    advance(stepper, pixels, nextPixelByNeighbours);
  }
}

void storeValues(Stepper* stepper, int pixels, double* values) {
  advance(
      stepper, pixels,
      [&](int range) {
        for (int i = 0; i < range; ++i) {
          values[i] = stepper->at + (i + 1) * stepper->increment;
        }
        values += range;
      },
      [&] { *values++ = stepper->at = nextPixel(*stepper); });
}
