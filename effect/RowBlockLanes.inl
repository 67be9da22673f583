// The block computations in vectors, compiled once per instruction set by the RowBlocksAvx*.cpp files, each of which
// defines its vectors beforehand: Doubles and Ints of kLanes lanes and the functions on them.
// Everything stands in an unnamed namespace and nothing of the standard library is called, so that no code of a set
// that a machine lacks can stand in for another file's.
#include "effect/RowBlocksVariants.h"

namespace {

// The number of pixels of a block that are computed, in whole vectors.
inline int WholeVectors(int count) {
  return (count + kLanes - 1) / kLanes * kLanes;
}

// Before the first pixel of a block that may lie nowhere, those that are not asked whether they do must be said not to.
inline void LetNoneLieNowhere(PixelBlock* out) {
  __builtin_memset(out->lies_nowhere, 0, sizeof out->lies_nowhere);
}

// ---- Positions -----------------------------------------------------------------------------------------------------

inline void StorePositions(Doubles u, Doubles v, Doubles w, const InputScale& scale, int i, PixelBlock* out) {
  Store(Truncated(FromInts(Truncated(u / w)) * Broadcast(scale.x)), out->x + i);
  Store(Truncated(FromInts(Truncated(v / w)) * Broadcast(scale.y)), out->y + i);
}

// Pixels that are a run of all coordinates: their divisors have one exponent, so that none is 0.
inline void ComputeRun(RowWalk* walk, const InputScale& scale, int count, PixelBlock* out) {
  const auto pixel_of = [](const CoordinateWalk& c, Doubles number) {
    return MultiplyAdd(number, Broadcast(c.step), Broadcast(c.at));
  };
  Doubles number = Ramp();
  for (int i = 0; i < count; i += kLanes) {
    StorePositions(pixel_of(walk->u, number), pixel_of(walk->v, number), pixel_of(walk->w, number), scale, i, out);
    number = number + Broadcast(kLanes);
  }
  WalkAlong(walk, count);
}

// Any pixels.
[[gnu::noinline]] bool ComputeStored(RowWalk* walk, const InputScale& scale, int count, PixelBlock* out) {
  double u[kRowBlock];
  double v[kRowBlock];
  double w[kRowBlock];
  StoreAlong(&walk->u, count, u);
  StoreAlong(&walk->v, count, v);
  StoreAlong(&walk->w, count, w);
  LetNoneLieNowhere(out);
  bool any_nowhere = false;
  for (int i = 0; i < count; i += kLanes) {
    const Doubles divisor = Load(w + i);
    if (AllGreater(Magnitude(divisor), Broadcast(0.0))) {
      StorePositions(Load(u + i), Load(v + i), divisor, scale, i, out);
      continue;
    }
    for (int j = i; j < i + kLanes; ++j) {
      any_nowhere = StorePlainPosition(u[j], v[j], w[j], scale, j, out) || any_nowhere;
    }
  }
  return any_nowhere;
}

bool Positions(RowWalk* walk, const InputScale& scale, int count, PixelBlock* out) {
  const int end = WholeVectors(count);
  if (!HasRun(walk, end)) {
    return ComputeStored(walk, scale, end, out);
  }
  ComputeRun(walk, scale, end, out);
  return false;
}

// ---- Footprints ----------------------------------------------------------------------------------------------------

// A coordinate of pixels and of their neighbours, as the walk comes by them.
struct Neighbourhood {
  Doubles centre;
  Doubles right;
  Doubles lower_right;
  Doubles lower;
};

inline Neighbourhood WalkOneByOne(CoordinateWalk* walk) {
  double centre[kLanes];
  double right[kLanes];
  double lower_right[kLanes];
  double lower[kLanes];
  for (int i = 0; i < kLanes; ++i) {
    centre[i] = walk->at + walk->right;
    right[i] = centre[i] + walk->right;
    lower_right[i] = right[i] + walk->down;
    lower[i] = lower_right[i] - walk->right;
    walk->at = lower[i] - walk->down;
  }
  walk->run = 0;
  return {Load(centre), Load(right), Load(lower_right), Load(lower)};
}

// What the walk comes by at a vector of pixels.
struct Stretch {
  Neighbourhood u;
  Neighbourhood v;
  Neighbourhood w;
};

[[gnu::noinline]] Stretch WalkOneByOne(RowWalk* walk) {
  return {WalkOneByOne(&walk->u), WalkOneByOne(&walk->v), WalkOneByOne(&walk->w)};
}

// The extents of a block's boxes, 16.16, neither clamped nor halved.
struct Extents {
  std::int32_t x[kRowBlock];
  std::int32_t y[kRowBlock];
};

// The boxes of a block's pixels [first, end).
inline void StoreBoxes(const Extents& extents, int first, int end, PixelBlock* out) {
  for (int i = first; i < end; i += kLanes) {
    const Ints x_radius = HalfClamped(Load(extents.x + i), 65536, 1048576);
    const Ints y_radius = HalfClamped(Load(extents.y + i), 65536, 1048576);
    const Doubles product = FromInts(x_radius) * FromInts(y_radius);
    StoreBoxes(x_radius, y_radius, TimesFour(Truncated(product * Broadcast(1.0 / 65536.0))), out->box + i);
  }
}

inline Doubles Extent(Doubles centre, Doubles right, Doubles lower_right, Doubles lower) {
  return Larger(Larger(Magnitude(right - centre), Magnitude(lower_right - centre)), Magnitude(lower - centre));
}

// Every quotient of a vector at pixel i by itself, as the definition has it.
inline void MeasureExactly(const Stretch& at, const InputScale& scale, int i, Extents* extents, PixelBlock* out) {
  const Doubles fixed = Broadcast(65536.0);
  const Doubles half = Broadcast(0.5);
  const auto measure = [&](const Neighbourhood& p, double to_input, std::int32_t* position, std::int32_t* extent) {
    const Doubles centre = p.centre / at.w.centre;
    const Doubles scaled = centre * Broadcast(to_input);
    const Doubles scaled_extent =
        Extent(centre, p.right / at.w.right, p.lower_right / at.w.lower_right, p.lower / at.w.lower) *
        Broadcast(to_input);
    Store(Truncated(scaled * fixed + WithSignOf(half, scaled)), position + i);
    Store(Truncated(scaled_extent * fixed + half), extent + i);
  };
  measure(at.u, scale.x, out->x, extents->x);
  measure(at.v, scale.y, out->y, extents->y);
}

// The smallest and the largest magnitude among a block's pixels and their neighbours, to within a factor that the
// bounds below have room for; the smallest is 0 where the sign changes.
struct Magnitudes {
  double smallest;
  double largest;
};

inline double Lesser(double a, double b) {
  return a < b ? a : b;
}
inline double Greater(double a, double b) {
  return a > b ? a : b;
}

inline Magnitudes MagnitudesOfBlock(const CoordinateWalk& walk) {
  const double last = walk.at + (kRowBlock + 1) * walk.right;
  const double low = Lesser(walk.at, last) + Lesser(walk.down, 0.0);
  const double high = Greater(walk.at, last) + Greater(walk.down, 0.0);
  const double smallest = low > 0.0 ? low : high < 0.0 ? -high : 0.0;
  return {smallest, Greater(high, -low)};
}

// How far the near computation below may be from the exact one in this block, in 1/65536 pixel; infinite where it must
// not be used.
//
// With q = 2^-53, every addition of the walk errs by at most q times the largest magnitude, which in a block adds up to
// less than 5 * 64 + 4 such errors: less than 2^-44.6 of the largest u, v or w. Where the divisors' magnitudes are
// within a factor of 8 of each other, a quotient is therefore off by less than 2^-41.4 of the largest u or v over the
// smallest w, a distance of two by less than twice that, and the near computation's own roundings are far smaller.
inline double LargestError(const RowWalk& walk, const InputScale& scale) {
  constexpr double kNever = __builtin_inf();
  const Magnitudes u = MagnitudesOfBlock(walk.u);
  const Magnitudes v = MagnitudesOfBlock(walk.v);
  const Magnitudes w = MagnitudesOfBlock(walk.w);
  // What is compared this way round is false for NaN.
  const bool is_tame = w.smallest > 0x1p-100 && w.largest < 0x1p100 && w.largest < 8.0 * w.smallest &&
                       4.0 * __builtin_fabs(walk.w.down) < w.smallest && scale.x > 0.0 && scale.y > 0.0;
  const double farthest = Greater(u.largest * scale.x, v.largest * scale.y) * 65536.0 / w.smallest;
  return is_tame && farthest < 0x1p31 ? farthest * 0x1p-39 + 0x1p-30 : kNever;
}

// The reciprocals of a block's divisors and of their neighbours', a vector each.
struct Reciprocals {
  static constexpr int kVectors = kRowBlock / kLanes;
  Doubles own[kVectors];
  Doubles right[kVectors];
  Doubles diagonal[kVectors];
  Doubles down[kVectors];
};

// With one division for all four of a pixel, and without the walk's roundings.
inline void ComputeReciprocals(const CoordinateWalk& walk, int count, Reciprocals* out) {
  const Doubles at = Broadcast(walk.at);
  const Doubles step_right = Broadcast(walk.right);
  const Doubles step_down = Broadcast(walk.down);
  const Doubles step_diagonal = step_right + step_down;
  Doubles pixel = Ramp();
  for (int i = 0; i < count / kLanes; ++i) {
    const Doubles own = MultiplyAdd(pixel, step_right, at);
    const Doubles right = own + step_right;
    const Doubles diagonal = own + step_diagonal;
    const Doubles down = own + step_down;
    const Doubles upper = own * right;
    const Doubles lower = diagonal * down;
    const Doubles all = Broadcast(1.0) / (upper * lower);
    const Doubles of_upper = all * lower;
    const Doubles of_lower = all * upper;
    out->own[i] = of_upper * right;
    out->right[i] = of_upper * own;
    out->diagonal[i] = of_lower * down;
    out->down[i] = of_lower * diagonal;
    pixel = pixel + Broadcast(kLanes);
  }
}

// Vectors of a block, a bit each.
using VectorSet = unsigned;

// A block's positions and extents along one axis, from near quotients. Returns the vectors in which numbers that may be
// off by `error` are not sure to truncate as the exact ones do.
//
// From a quotient p = u / w to a neighbour's it is (du - p dw) / (w + dw), for a step (du, dw).
inline VectorSet MeasureAxis(const CoordinateWalk& walk, const CoordinateWalk& divisor, double to_input, double error,
                             const Reciprocals& reciprocals, int count, std::int32_t* positions,
                             std::int32_t* extents) {
  const Doubles at = Broadcast(walk.at);
  const Doubles right = Broadcast(walk.right);
  const Doubles down = Broadcast(walk.down);
  const Doubles diagonal = right + down;
  const Doubles divisor_right = Broadcast(divisor.right);
  const Doubles divisor_down = Broadcast(divisor.down);
  const Doubles divisor_diagonal = divisor_right + divisor_down;
  const Doubles scale = Broadcast(to_input * 65536.0);
  const Doubles half = Broadcast(0.5);
  const Doubles largest_error = Broadcast(error);
  Doubles pixel = Ramp();
  VectorSet unsure = 0;
  for (int i = 0; i < count / kLanes; ++i) {
    const Doubles place = MultiplyAdd(pixel, right, at) * reciprocals.own[i];
    const Doubles to_right = SubtractProduct(right, place, divisor_right) * reciprocals.right[i];
    const Doubles to_diagonal = SubtractProduct(diagonal, place, divisor_diagonal) * reciprocals.diagonal[i];
    const Doubles to_down = SubtractProduct(down, place, divisor_down) * reciprocals.down[i];
    const Doubles farthest = LargerMagnitude(LargerMagnitude(to_right, to_diagonal), to_down);
    const Doubles position = MultiplyAdd(place, scale, WithSignOf(half, place));
    const Doubles extent = MultiplyAdd(farthest, scale, half);
    const bool is_sure = AllGreater(SmallerMagnitude(ToWhole(position), ToWhole(extent)), largest_error);
    unsure |= static_cast<VectorSet>(!is_sure) << i;
    Store(Truncated(position), positions + i * kLanes);
    Store(Truncated(extent), extents + i * kLanes);
    pixel = pixel + Broadcast(kLanes);
  }
  return unsure;
}

// The vector at pixel i of a block that begins at `begin`, in which no divisor is near 0.
[[gnu::noinline]] void MeasureExactlyAt(const RowWalk& begin, const InputScale& scale, int i, Extents* extents,
                                        PixelBlock* out) {
  RowWalk walk = begin;
  WalkRound(&walk, i);
  MeasureExactly(WalkOneByOne(&walk), scale, i, extents, out);
}

void ComputeNearBlock(RowWalk* walk, const InputScale& scale, double largest_error, int count, PixelBlock* out) {
  Reciprocals reciprocals;
  Extents extents;
  ComputeReciprocals(walk->w, count, &reciprocals);
  VectorSet unsure = MeasureAxis(walk->u, walk->w, scale.x, largest_error, reciprocals, count, out->x, extents.x) |
                     MeasureAxis(walk->v, walk->w, scale.y, largest_error, reciprocals, count, out->y, extents.y);
  for (; unsure != 0; unsure &= unsure - 1) {
    MeasureExactlyAt(*walk, scale, __builtin_ctz(unsure) * kLanes, &extents, out);
  }
  StoreBoxes(extents, 0, count, out);
  WalkRound(walk, count);
}

// Near a horizon, or of any other map.
bool ComputeExactBlock(RowWalk* walk, const InputScale& scale, int count, PixelBlock* out) {
  Extents extents;
  // No divisor above this can lead to one that is 0.
  const Doubles safe_divisor = Broadcast(2.0 * (__builtin_fabs(walk->w.right) + __builtin_fabs(walk->w.down)));
  LetNoneLieNowhere(out);
  bool any_nowhere = false;
  for (int i = 0; i < count; i += kLanes) {
    RowWalk ahead = *walk;
    const Stretch at = WalkOneByOne(&ahead);
    if (AllGreater(Magnitude(at.w.centre), safe_divisor)) {
      MeasureExactly(at, scale, i, &extents, out);
      StoreBoxes(extents, i, i + kLanes, out);
      *walk = ahead;
    } else {
      any_nowhere = PlainFootprints(walk, scale, i, i + kLanes, out) || any_nowhere;
    }
  }
  return any_nowhere;
}

bool Footprints(RowWalk* walk, const InputScale& scale, int count, PixelBlock* out) {
  const int end = WholeVectors(count);
  const double largest_error = LargestError(*walk, scale);
  if (largest_error < 0x1p-7) {
    ComputeNearBlock(walk, scale, largest_error, end, out);
    return false;
  }
  return ComputeExactBlock(walk, scale, end, out);
}

constexpr RowBlockFunctions kFunctions{Positions, Footprints};

}  // namespace
