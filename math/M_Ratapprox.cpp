#include "M_Ratapprox.h"

#include <cmath>

// The value is expanded into a continued fraction in integer arithmetic: a float is a fraction of integers, so nothing
// is rounded on the way. The expansion is always that of a y >= 1, either x itself or 1/x, so that the larger term of
// each convergent, the one that the limit bounds, is its numerator.

namespace {

// NOLINTNEXTLINE(readability-identifier-naming): named like the function that uses it.
constexpr M_Ratio ratZero = {0, 1};
constexpr int kMantissaBits = 24;
constexpr float kTwoTo31 = 2147483648.0f;

struct Division {
  std::uint32_t quotient;
  std::uint32_t remainder;
};

// The terms of a convergent of y.
struct Convergent {
  std::uint32_t bounded;  // the numerator, the larger one
  std::uint32_t other;    // the denominator
};

// y as its integer part plus remainder / divisor; the remainder is less than the divisor.
struct Expansion {
  std::uint32_t integer;
  std::uint32_t divisor;
  std::uint32_t remainder;
};

// A positive float as mantissa * 2^-scale with a mantissa of exactly 24 bits.
struct BinaryFraction {
  std::uint32_t mantissa;
  int scale;
};

BinaryFraction splitFloat(float x) {
  int exponent = 0;
  const float fraction = std::frexp(x, &exponent);
  return {static_cast<std::uint32_t>(std::ldexp(fraction, kMantissaBits)), kMantissaBits - exponent};
}

// 2^power / divisor by long division, for a quotient below 2^32 and a divisor below 2^24: since the remainder is below
// 2^24 too, steps of 8 bits fit into 32 bits.
Division dividePowerOfTwo(int power, std::uint32_t divisor) {
  int shift = M_Min(power, 31);
  Division result = {(std::uint32_t{1} << shift) / divisor, (std::uint32_t{1} << shift) % divisor};
  for (int left = power - shift; left > 0; left -= shift) {
    shift = M_Min(left, 8);
    const std::uint32_t dividend = result.remainder << shift;
    result = {(result.quotient << shift) + dividend / divisor, dividend % divisor};
  }
  return result;
}

Expansion expandLarge(float x) {
  const float integer = std::floor(x);
  const float fraction_in_units = std::ldexp(x - integer, kMantissaBits - 1);
  return {static_cast<std::uint32_t>(integer), std::uint32_t{1} << (kMantissaBits - 1),
          static_cast<std::uint32_t>(fraction_in_units)};
}

Expansion expandReciprocal(BinaryFraction x) {
  const Division reciprocal = dividePowerOfTwo(x.scale, x.mantissa);
  return {reciprocal.quotient, x.mantissa, reciprocal.remainder};
}

bool productIsAtMost(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
  std::uint32_t left_hi = 0;
  std::uint32_t left_lo = 0;
  std::uint32_t right_hi = 0;
  std::uint32_t right_lo = 0;
  Mul32(a, b, &left_hi, &left_lo);
  Mul32(c, d, &right_hi, &right_lo);
  return left_hi != right_hi ? left_hi < right_hi : left_lo <= right_lo;
}

// The (semi)convergent before_last + steps * last, term by term.
Convergent advance(std::uint32_t steps, Convergent last, Convergent before_last) {
  return {steps * last.bounded + before_last.bounded, steps * last.other + before_last.other};
}

// The best approximation of y whose bounded term is at most `limit`, which is above y's integer part. "Best" means
// nearest to x, whose denominators are y's other terms or, if y is the reciprocal of x, its bounded terms.
Convergent bestConvergent(std::uint32_t limit, Expansion y, bool reciprocal) {
  Convergent before_last = {0, 1};
  Convergent last = {1, 0};
  Convergent current = {y.integer, 1};
  while (y.remainder != 0) {
    before_last = last;
    last = current;
    const std::uint32_t partial_quotient = y.divisor / y.remainder;
    const std::uint32_t next_remainder = y.divisor - partial_quotient * y.remainder;
    y.divisor = y.remainder;
    y.remainder = next_remainder;

    const std::uint32_t fitting = (limit - before_last.bounded) / last.bounded;
    if (fitting > partial_quotient) {
      current = advance(partial_quotient, last, before_last);
      continue;
    }
    // The limit is reached. The semiconvergent after `fitting` steps is nearer than the last convergent if that is more
    // than half of the partial quotient; at exactly half, the rest of the expansion decides.
    const std::uint64_t twice_fitting = std::uint64_t{2} * fitting;
    const std::uint32_t last_denominator = reciprocal ? last.bounded : last.other;
    const std::uint32_t before_last_denominator = reciprocal ? before_last.bounded : before_last.other;
    const bool keep_last = twice_fitting < partial_quotient ||
                           (twice_fitting == partial_quotient &&
                            productIsAtMost(before_last_denominator, y.divisor, last_denominator, y.remainder));
    return keep_last ? last : advance(fitting, last, before_last);
  }
  return current;
}

// For x of 1 and above.
M_Ratio approximateLarge(std::int32_t limit, float x) {
  if (x >= kTwoTo31) {
    return {limit, 1};
  }
  const auto bound = static_cast<std::uint32_t>(limit);
  const Expansion y = expandLarge(x);
  if (y.integer >= bound) {
    return {limit, 1};
  }
  const Convergent best = bestConvergent(bound, y, false);
  return {static_cast<std::int32_t>(best.bounded), best.other};
}

// For positive x below 1. If 1/x is at least the limit, only 0 and 1/limit are candidates: the nearer one, or 0 in a
// tie.
M_Ratio approximateSmall(std::int32_t limit, float x) {
  const auto bound = static_cast<std::uint32_t>(limit);
  if (x <= 0.5f / kTwoTo31) {
    return ratZero;
  }
  const BinaryFraction split = splitFloat(x);
  if (x <= 1.0f / kTwoTo31) {
    const std::uint32_t half_reciprocal = dividePowerOfTwo(split.scale - 1, split.mantissa).quotient;
    return bound > half_reciprocal ? M_Ratio{1, bound} : ratZero;
  }
  const Expansion y = expandReciprocal(split);
  if (y.integer >= bound) {
    return 2 * bound > y.integer ? M_Ratio{1, bound} : ratZero;
  }
  const Convergent best = bestConvergent(bound, y, true);
  return {static_cast<std::int32_t>(best.other), best.bounded};
}

}  // namespace

M_Ratio ratapprox(std::int32_t limit, float x) {
  if (limit <= 0) {
    return ratZero;
  }
  if (std::isnan(x)) {
    return {0, 0};
  }
  const bool negative = x < 0.0f;
  const float magnitude = negative ? -x : x;
  M_Ratio result = magnitude >= 1.0f ? approximateLarge(limit, magnitude) : approximateSmall(limit, magnitude);
  if (negative) {
    result.num = -result.num;
  }
  return result;
}

// Multiplies 16-bit halves, whose products fit into a word.
void Mul32(std::uint32_t a, std::uint32_t b, std::uint32_t* hi, std::uint32_t* lo) {
  constexpr std::uint32_t kHalf = 0xFFFF;
  const std::uint32_t low = (a & kHalf) * (b & kHalf);
  const std::uint32_t middle_a = (a >> 16) * (b & kHalf) + (low >> 16);
  const std::uint32_t middle_b = (a & kHalf) * (b >> 16) + (middle_a & kHalf);
  *hi = (a >> 16) * (b >> 16) + (middle_a >> 16) + (middle_b >> 16);
  *lo = (middle_b << 16) | (low & kHalf);
}
