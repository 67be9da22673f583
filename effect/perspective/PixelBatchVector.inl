// The block computations in vectors, compiled once per instruction set by the RowBlocksAvx*.cpp files, each of which
// defines its vectors beforehand: Doubles and Ints of kLanes lanes and the functions on them.
// Everything stands in an unnamed namespace and nothing of the standard library is called, so that no code of a set
// that a machine lacks can stand in for another file's.
#include "effect/perspective/PixelBatchScalar.h"

namespace {

// The number of pixels of a block that are computed, in whole vectors.
inline int wholeVectors(int count) {
  return (count + kLanes - 1) / kLanes * kLanes;
}

// Before the first pixel of a block that may lie nowhere, those that are not asked whether they do must be said not to.
inline void letNoneLieNowhere(PixelBlock* out) {
  __builtin_memset(out->lies_nowhere, 0, sizeof out->lies_nowhere);
}

// ---- Positions -----------------------------------------------------------------------------------------------------

inline void storePositions(Doubles u, Doubles v, Doubles w, const InputScale& scale, int i, PixelBlock* out) {
  store(truncated(fromInts(truncated(u / w)) * broadcast(scale.x)), out->x + i);
  store(truncated(fromInts(truncated(v / w)) * broadcast(scale.y)), out->y + i);
}

// The pixels [first, end), which are a run of all coordinates: their divisors have one exponent, so that none is 0.
inline void computeRun(RowWalk* walk, const InputScale& scale, int first, int end, PixelBlock* out) {
  const auto pixel_of = [](const CoordinateWalk& c, Doubles number) {
    return multiplyAdd(number, broadcast(c.step), broadcast(c.at));
  };
  Doubles number = ramp();
  for (int i = first; i < end; i += kLanes) {
    storePositions(pixel_of(walk->u, number), pixel_of(walk->v, number), pixel_of(walk->w, number), scale, i, out);
    number = number + broadcast(kLanes);
  }
  passRun(&walk->u, end - first);
  passRun(&walk->v, end - first);
  passRun(&walk->w, end - first);
}

// The vector of any pixels from pixel i on.
[[gnu::noinline]] bool computeStored(RowWalk* walk, const InputScale& scale, int i, PixelBlock* out) {
  double u[kLanes];
  double v[kLanes];
  double w[kLanes];
  storeAlong(&walk->u, kLanes, u);
  storeAlong(&walk->v, kLanes, v);
  storeAlong(&walk->w, kLanes, w);
  const Doubles divisor = load(w);
  if (allGreater(magnitude(divisor), broadcast(0.0))) {
    storePositions(load(u), load(v), divisor, scale, i, out);
    return false;
  }
  bool any_nowhere = false;
  for (int lane = 0; lane < kLanes; ++lane) {
    any_nowhere = storePlainPosition(u[lane], v[lane], w[lane], scale, i + lane, out) || any_nowhere;
  }
  return any_nowhere;
}

// Takes the longest runs of whole vectors, and the vectors between them.
[[gnu::noinline]] bool computeBetweenRuns(RowWalk* walk, const InputScale& scale, int count, PixelBlock* out) {
  letNoneLieNowhere(out);
  bool any_nowhere = false;
  for (int i = 0; i < count;) {
    const int run = knownRun(walk) / kLanes * kLanes;
    if (run > 0) {
      const int end = run < count - i ? i + run : count;
      computeRun(walk, scale, i, end, out);
      i = end;
    } else {
      any_nowhere = computeStored(walk, scale, i, out) || any_nowhere;
      i += kLanes;
    }
  }
  return any_nowhere;
}

bool positions(RowWalk* walk, const InputScale& scale, int count, PixelBlock* out) {
  const int end = wholeVectors(count);
  if (knownRun(walk) < end) {
    return computeBetweenRuns(walk, scale, end, out);
  }
  computeRun(walk, scale, 0, end, out);
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

inline Neighbourhood walkOneByOne(CoordinateWalk* walk) {
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
  return {load(centre), load(right), load(lower_right), load(lower)};
}

// What the walk comes by at a vector of pixels.
struct Stretch {
  Neighbourhood u;
  Neighbourhood v;
  Neighbourhood w;
};

[[gnu::noinline]] Stretch walkOneByOne(RowWalk* walk) {
  return {walkOneByOne(&walk->u), walkOneByOne(&walk->v), walkOneByOne(&walk->w)};
}

// The extents of a block's boxes, 16.16, neither clamped nor halved.
struct Extents {
  std::int32_t x[kRowBlock];
  std::int32_t y[kRowBlock];
};

// The boxes of a block's pixels [first, end).
inline void storeBoxes(const Extents& extents, int first, int end, PixelBlock* out) {
  for (int i = first; i < end; i += kLanes) {
    const Ints x_radius = halfClamped(load(extents.x + i), 65536, 1048576);
    const Ints y_radius = halfClamped(load(extents.y + i), 65536, 1048576);
    storeBoxes(x_radius, y_radius, out->box + i);
  }
}

inline Doubles extentOf(Doubles centre, Doubles right, Doubles lower_right, Doubles lower) {
  return larger(larger(magnitude(right - centre), magnitude(lower_right - centre)), magnitude(lower - centre));
}

// Every quotient of a vector at pixel i by itself, as the definition has it.
inline void measureExactly(const Stretch& at, const InputScale& scale, int i, Extents* extents, PixelBlock* out) {
  const Doubles fixed = broadcast(65536.0);
  const Doubles half = broadcast(0.5);
  const auto measure = [&](const Neighbourhood& p, double to_input, std::int32_t* position, std::int32_t* extent) {
    const Doubles centre = p.centre / at.w.centre;
    const Doubles scaled = centre * broadcast(to_input);
    const Doubles scaled_extent =
        extentOf(centre, p.right / at.w.right, p.lower_right / at.w.lower_right, p.lower / at.w.lower) *
        broadcast(to_input);
    store(truncated(scaled * fixed + withSignOf(half, scaled)), position + i);
    store(truncated(scaled_extent * fixed + half), extent + i);
  };
  measure(at.u, scale.x, out->x, extents->x);
  measure(at.v, scale.y, out->y, extents->y);
}

// The smallest and the largest magnitude among pixels and their neighbours, to within a factor that the bounds below
// have room for, NaN where one of them is; the smallest is 0 where the sign changes.
struct Magnitudes {
  double smallest;
  double largest;
};

inline double lesser(double a, double b) {
  return a < b ? a : b;
}
inline double greater(double a, double b) {
  return a > b ? a : b;
}

inline Magnitudes magnitudesOf(const CoordinateWalk& walk, int pixels) {
  const double last = walk.at + (pixels + 1) * walk.right;
  const double low = lesser(walk.at, last) + lesser(0.0, walk.down);
  const double high = greater(walk.at, last) + greater(0.0, walk.down);
  const double smallest = low > 0.0 ? low : high < 0.0 ? -high : 0.0;
  return {smallest, greater(high, -low)};
}

// How far the near computation below may be from the exact one in blocks among the next pixels, in 1/65536 pixel;
// infinite where it must not be used.
//
// With q = 2^-53, every addition of the walk errs by at most q times the largest magnitude, which in a block adds up to
// less than 5 * 64 + 4 such errors: less than 2^-44.6 of the largest u, v or w. Where the divisors' magnitudes are
// within a factor of 8 of each other, a quotient is therefore off by less than 2^-41.4 of the largest u or v over the
// smallest w, a distance of two by less than twice that, and the near computation's own roundings are far smaller.
inline double largestError(const RowWalk& walk, const InputScale& scale, int pixels) {
  constexpr double kNever = __builtin_inf();
  const Magnitudes u = magnitudesOf(walk.u, pixels);
  const Magnitudes v = magnitudesOf(walk.v, pixels);
  const Magnitudes w = magnitudesOf(walk.w, pixels);
  // What is compared this way round is false for NaN.
  const bool is_tame =
      w.smallest > 0x1p-100 && w.largest < 0x1p100 && w.largest < 8.0 * w.smallest && scale.x > 0.0 && scale.y > 0.0;
  const double farthest = greater(u.largest * scale.x, v.largest * scale.y) * 65536.0 / w.smallest;
  return is_tame && farthest < 0x1p30 ? farthest * 0x1p-39 + 0x1p-30 : kNever;
}

// The quotients of a block's pixels and of the pixels below them, and those of some pixels beyond the block: the right
// neighbours are the next pixels, and the lower right ones those below the next.
struct NearQuotients {
  static constexpr int kPixels = kRowBlock + kLanes;
  double x[kPixels];
  double y[kPixels];
  double lower_x[kPixels];
  double lower_y[kPixels];
};

// With one division for all four of a pixel, and without the walk's roundings.
inline void computeQuotients(const RowWalk& walk, int count, NearQuotients* out) {
  const Doubles u = broadcast(walk.u.at);
  const Doubles v = broadcast(walk.v.at);
  const Doubles w = broadcast(walk.w.at);
  const Doubles u_right = broadcast(walk.u.right);
  const Doubles v_right = broadcast(walk.v.right);
  const Doubles w_right = broadcast(walk.w.right);
  const Doubles u_down = broadcast(walk.u.down);
  const Doubles v_down = broadcast(walk.v.down);
  const Doubles w_down = broadcast(walk.w.down);
  Doubles pixel = ramp();
  for (int i = 0; i < count + kLanes; i += kLanes) {
    const Doubles own_w = multiplyAdd(pixel, w_right, w);
    const Doubles lower_w = own_w + w_down;
    const Doubles both = broadcast(1.0) / (own_w * lower_w);
    const Doubles own = both * lower_w;
    const Doubles lower = both * own_w;
    const Doubles own_u = multiplyAdd(pixel, u_right, u);
    const Doubles own_v = multiplyAdd(pixel, v_right, v);
    store(own_u * own, out->x + i);
    store(own_v * own, out->y + i);
    store((own_u + u_down) * lower, out->lower_x + i);
    store((own_v + v_down) * lower, out->lower_y + i);
    pixel = pixel + broadcast(kLanes);
  }
}

// Vectors of a block, a bit each.
using VectorSet = unsigned;

// A vector's numbers times a factor, rounded to nearest by way of numbers of which 1 is the last digit.
struct Rounded {
  Doubles shifted;   // kRoundingShift more than the whole number
  Doubles distance;  // from the whole number to what was rounded
};

inline Rounded roundProduct(Doubles number, Doubles factor) {
  const Doubles shift = broadcast(kRoundingShift);
  const Doubles shifted = multiplyAdd(number, factor, shift);
  return {shifted, multiplySubtract(number, factor, shifted - shift)};
}

// A block's positions and extents along one axis, from near quotients. Returns the vectors in which numbers that may be
// off by `error` are not sure to round as the exact ones do.
inline VectorSet measureAxis(const double* own, const double* lower, double to_input, double error, int count,
                             std::int32_t* positions, std::int32_t* extents) {
  const Doubles scale = broadcast(to_input * 65536.0);
  const Doubles most = broadcast(0.5 - error);
  VectorSet unsure = 0;
  for (int i = 0; i < count; i += kLanes) {
    const Doubles place = load(own + i);
    const Doubles farthest = largerMagnitude(largerMagnitude(load(own + i + 1) - place, load(lower + i + 1) - place),
                                             load(lower + i) - place);
    const Rounded position = roundProduct(place, scale);
    const Rounded extent = roundProduct(farthest, scale);
    const bool is_sure = allGreater(most, largerMagnitude(position.distance, extent.distance));
    unsure |= static_cast<VectorSet>(!is_sure) << (i / kLanes);
    store(intsOfShifted(position.shifted), positions + i);
    store(intsOfShifted(extent.shifted), extents + i);
  }
  return unsure;
}

// The same for the block to come, and whether the near computation may be used. It is looked for over some blocks at
// once.
inline bool allowsNearBlock(RowWalk* walk, const InputScale& scale) {
  constexpr double kLargest = 0x1p-7;
  constexpr int kPixelsAhead = 4 * kRowBlock;
  if (walk->error_pixels < kRowBlock) {
    walk->error = largestError(*walk, scale, kPixelsAhead);
    walk->error_pixels = kPixelsAhead;
    if (!(walk->error < kLargest)) {
      walk->error = largestError(*walk, scale, kRowBlock);
      walk->error_pixels = kRowBlock;
    }
  }
  walk->error_pixels -= kRowBlock;
  return walk->error < kLargest;
}

// The vector at pixel i of a block that begins at `begin`, in which no divisor is near 0; `is_run` tells whether all
// its coordinates are runs.
[[gnu::noinline]] void measureExactlyAt(const RowWalk& begin, bool is_run, const InputScale& scale, int i,
                                        Extents* extents, PixelBlock* out) {
  if (is_run) {
    const auto go_round = [i](const CoordinateWalk& c) {
      const Doubles centre = multiplyAdd(ramp() + broadcast(i), broadcast(c.step), broadcast(c.at));
      const Doubles right = centre + broadcast(c.right);
      const Doubles lower_right = right + broadcast(c.down);
      return Neighbourhood{centre, right, lower_right, lower_right - broadcast(c.right)};
    };
    measureExactly({go_round(begin.u), go_round(begin.v), go_round(begin.w)}, scale, i, extents, out);
  } else {
    RowWalk walk = begin;
    walkRound(&walk, i);
    measureExactly(walkOneByOne(&walk), scale, i, extents, out);
  }
}

void computeNearBlock(RowWalk* walk, const InputScale& scale, int count, PixelBlock* out) {
  NearQuotients near;
  Extents extents;
  computeQuotients(*walk, count, &near);
  VectorSet unsure = measureAxis(near.x, near.lower_x, scale.x, walk->error, count, out->x, extents.x) |
                     measureAxis(near.y, near.lower_y, scale.y, walk->error, count, out->y, extents.y);
  const bool is_run = knownRun(walk) >= count;
  for (; unsure != 0; unsure &= unsure - 1) {
    measureExactlyAt(*walk, is_run, scale, __builtin_ctz(unsure) * kLanes, &extents, out);
  }
  storeBoxes(extents, 0, count, out);
  if (is_run) {
    passRun(&walk->u, count);
    passRun(&walk->v, count);
    passRun(&walk->w, count);
  } else {
    walkRound(walk, count);
  }
}

// Near a horizon, or of any other map.
bool computeExactBlock(RowWalk* walk, const InputScale& scale, int count, PixelBlock* out) {
  Extents extents;
  // No divisor above this can lead to one that is 0.
  const Doubles safe_divisor = broadcast(2.0 * (__builtin_fabs(walk->w.right) + __builtin_fabs(walk->w.down)));
  letNoneLieNowhere(out);
  bool any_nowhere = false;
  for (int i = 0; i < count; i += kLanes) {
    RowWalk ahead = *walk;
    const Stretch at = walkOneByOne(&ahead);
    if (allGreater(magnitude(at.w.centre), safe_divisor)) {
      measureExactly(at, scale, i, &extents, out);
      storeBoxes(extents, i, i + kLanes, out);
      *walk = ahead;
    } else {
      any_nowhere = plainFootprints(walk, scale, i, i + kLanes, out) || any_nowhere;
    }
  }
  return any_nowhere;
}

bool footprints(RowWalk* walk, const InputScale& scale, int count, PixelBlock* out) {
  const int end = wholeVectors(count);
  if (allowsNearBlock(walk, scale)) {
    computeNearBlock(walk, scale, end, out);
    return false;
  }
  return computeExactBlock(walk, scale, end, out);
}

constexpr RowBlockFunctions kFunctions{positions, footprints};

}  // namespace
