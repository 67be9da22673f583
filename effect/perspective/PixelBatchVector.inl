// The batch computations in vectors. PixelBatchAvx2.cpp and PixelBatchAvx512.cpp each define the vectors of their
// instruction set and then include this body.
//
// Doubles holds kLanes doubles, with the arithmetic operators that GCC and Clang define on vectors; Ints holds as many
// 32-bit integers. Functions whose names do not say everything:
//   maxAbs(a, b)             the larger of the two magnitudes
//   maxOrSecond(a, b)        the larger number; b if either is a NaN
//   copySign(m, s)           m, which must not be negative, with the sign of s
//   truncate(a)              toward zero; NaN and values outside the int32 range give -2147483648
//   intsOfShifted(a, shift)  the whole numbers a - shift, for the kRoundingShift below
//
// Everything is in an unnamed namespace, and no inline function of the standard library is called: the linker keeps
// only one copy of an inline function, which must not be one that not every processor can run.

#include "effect/perspective/RangeSearchVector.inl"

namespace {

// Pixels per step: a multiple of the vector length, and the eight boxes that are stored together.
constexpr int kStepPixels = 8;
static_assert(kStepPixels % kLanes == 0 && kBatchPixels % kStepPixels == 0);

inline int wholeSteps(int count) {
  return (count + kStepPixels - 1) / kStepPixels * kStepPixels;
}

// Clears all flags, for functions that test only some of the batch's pixels for a divisor of 0.
inline void clearAtInfinity(PixelBatch* out) {
  __builtin_memset(out->at_infinity, 0, sizeof out->at_infinity);
}

// ---- Positions -----------------------------------------------------------------------------------------------------

inline void storePositions(Doubles u, Doubles v, Doubles w, const InputScale& scale, int i, PixelBatch* out) {
  store(truncate(toDoubles(truncate(u / w)) * set(scale.x)), out->x + i);
  store(truncate(toDoubles(truncate(v / w)) * set(scale.y)), out->y + i);
}

// The pixels [first, end), in the constant-exponent ranges of all coordinates: no divisor is 0 there.
inline void positionsInRange(IncrementalMap* map, const InputScale& scale, int first, int end, PixelBatch* out) {
  const auto values = [](const Stepper& c, Doubles pixel) { return mulAdd(pixel, set(c.increment), set(c.at)); };
  Doubles pixel = iota();
  for (int i = first; i < end; i += kLanes) {
    storePositions(values(map->u, pixel), values(map->v, pixel), values(map->w, pixel), scale, i, out);
    pixel = pixel + set(kLanes);
  }
  advanceInRange(map, end - first);
}

// The vector of pixels starting at i, which may lie outside any range.
[[gnu::noinline]] bool positionsOfVector(IncrementalMap* map, const InputScale& scale, int i, PixelBatch* out) {
  double u[kLanes];
  double v[kLanes];
  double w[kLanes];
  storeValues(&map->u, kLanes, u);
  storeValues(&map->v, kLanes, v);
  storeValues(&map->w, kLanes, w);
  const Doubles divisors = load(w);
  if (allGreater(abs(divisors), set(0.0))) {
    storePositions(load(u), load(v), divisors, scale, i, out);
    return false;
  }
  bool any_at_infinity = false;
  for (int lane = 0; lane < kLanes; ++lane) {
    any_at_infinity = scalarPosition(u[lane], v[lane], w[lane], scale, i + lane, out) || any_at_infinity;
  }
  return any_at_infinity;
}

// Processes as many whole vectors of each range as fit, and single vectors between ranges.
[[gnu::noinline]] bool positionsAcrossRanges(IncrementalMap* map, const InputScale& scale, int count, PixelBatch* out) {
  clearAtInfinity(out);
  bool any_at_infinity = false;
  for (int i = 0; i < count;) {
    const int range = constantExponentRange(map) / kLanes * kLanes;
    if (range > 0) {
      const int end = range < count - i ? i + range : count;
      positionsInRange(map, scale, i, end, out);
      i = end;
    } else {
      any_at_infinity = positionsOfVector(map, scale, i, out) || any_at_infinity;
      i += kLanes;
    }
  }
  return any_at_infinity;
}

bool positions(IncrementalMap* map, const InputScale& scale, int count, PixelBatch* out) {
  const int end = wholeSteps(count);
  if (rangeAhead(map) < end) {
    return positionsAcrossRanges(map, scale, end, out);
  }
  positionsInRange(map, scale, 0, end, out);
  return false;
}

}  // namespace

#include "effect/perspective/FootprintVectors.inl"
