// The block computations in vectors, compiled once per instruction set by the RowBlocksAvx*.cpp files, each of which
// defines its vectors beforehand: DoubleVector and IntVector of kVectorLanes lanes and the functions on them.
// Everything stands in an unnamed namespace and nothing of the standard library is called, so that no code of a set
// that a machine lacks can stand in for another file's.
#include "effect/RowBlockPairs.inl"
#include "effect/RowBlocksVariants.h"

namespace {

// ---- The walk, a vector of pixels at a time ------------------------------------------------------------------------

// A coordinate of pixels and of their neighbours, as the walk comes by them.
struct Neighbourhood {
  Doubles centre;
  Doubles right;
  Doubles lower_right;
  Doubles lower;

  static Neighbourhood WalkOneByOne(CoordinateWalk* walk) {
    double centre[kLanes];
    double to_right[kLanes];
    double lower_right[kLanes];
    double lower[kLanes];
    for (int i = 0; i < kLanes; ++i) {
      centre[i] = walk->at + walk->right;
      to_right[i] = centre[i] + walk->right;
      lower_right[i] = to_right[i] + walk->down;
      lower[i] = lower_right[i] - walk->right;
      walk->at = lower[i] - walk->down;
    }
    walk->run = 0;
    return {Load(centre), Load(to_right), Load(lower_right), Load(lower)};
  }
};

// A coordinate of pixels alone.
struct Centres {
  Doubles centre;

  static Centres WalkOneByOne(CoordinateWalk* walk) {
    double centre[kLanes];
    for (double& pixel : centre) {
      pixel = walk->at += walk->right;
    }
    walk->run = 0;
    return {Load(centre)};
  }
};

// What the walk comes by at a vector of pixels.
template <typename Coordinate>
struct Stretch {
  Coordinate u;
  Coordinate v;
  Coordinate w;
};

template <typename Coordinate>
[[gnu::noinline]] Stretch<Coordinate> WalkOneByOne(RowWalk* walk) {
  return {Coordinate::WalkOneByOne(&walk->u), Coordinate::WalkOneByOne(&walk->v), Coordinate::WalkOneByOne(&walk->w)};
}

// Whether no divisor of the pixels or their neighbours can be 0, for steps of the divisor that add up to `reach`.
inline bool HasSafeDivisors(const Doubles& w, double reach) {
  return AllGreater(Magnitude(w), Broadcast(2.0 * reach));
}

// Leaves the pixels [i, i + kLanes), in some of which a divisor may be 0, to a plain computation. Those before them lie
// somewhere unless `any_nowhere` says otherwise. Returns what becomes of that.
template <typename Plain>
inline bool ComputePlainly(Plain plain, RowWalk* walk, const InputScale& scale, int i, bool any_nowhere,
                           PixelBlock* out) {
  if (!any_nowhere) {
    __builtin_memset(out->lies_nowhere, 0, sizeof out->lies_nowhere);
  }
  return plain(walk, scale, i, i + kLanes, out) || any_nowhere;
}

// ---- Positions -----------------------------------------------------------------------------------------------------

// The number of pixels of a block that are computed, in whole vectors.
inline int WholeVectors(int count) {
  return (count + kLanes - 1) / kLanes * kLanes;
}

inline void StorePositions(const Stretch<Centres>& at, const InputScale& scale, int i, PixelBlock* out) {
  Store(Truncated(FromInts(Truncated(at.u.centre / at.w.centre)) * Broadcast(scale.x)), out->x + i);
  Store(Truncated(FromInts(Truncated(at.v.centre / at.w.centre)) * Broadcast(scale.y)), out->y + i);
}

// The pixels [first, end), which are a run: their divisors all have one exponent, so that none is 0.
inline void ComputeRun(RowWalk* walk, const InputScale& scale, int first, int end, PixelBlock* out) {
  const auto pixel_of = [](const CoordinateWalk& c, const Doubles& number) {
    return Centres{MultiplyAdd(number, Broadcast(c.step), Broadcast(c.at))};
  };
  Doubles number = Ramp();
  for (int i = first; i < end; i += kLanes) {
    StorePositions({pixel_of(walk->u, number), pixel_of(walk->v, number), pixel_of(walk->w, number)}, scale, i, out);
    number = number + Broadcast(kLanes);
  }
  WalkAlong(walk, end - first);
}

bool Positions(RowWalk* walk, const InputScale& scale, int count, PixelBlock* out) {
  const int end = WholeVectors(count);
  if (HasRun(walk, end)) {
    ComputeRun(walk, scale, 0, end, out);
    return false;
  }
  bool any_nowhere = false;
  for (int i = 0; i < end; i += kLanes) {
    if (HasRun(walk, kLanes)) {
      ComputeRun(walk, scale, i, i + kLanes, out);
      continue;
    }
    RowWalk ahead = *walk;
    const Stretch<Centres> at = WalkOneByOne<Centres>(&ahead);
    if (HasSafeDivisors(at.w.centre, 0.0)) {
      StorePositions(at, scale, i, out);
      *walk = ahead;
    } else {
      any_nowhere = ComputePlainly(PlainPositions, walk, scale, i, any_nowhere, out);
    }
  }
  return any_nowhere;
}

// ---- Footprints ----------------------------------------------------------------------------------------------------

struct Points {
  Doubles x;
  Doubles y;
};

// What becomes whole numbers when it is truncated: positions and extents in 1/65536 pixel, a half added.
struct Untruncated {
  Points position;
  Points extent;
};

inline void StoreFootprints(const Untruncated& pixels, int i, PixelBlock* out) {
  Store(Truncated(pixels.position.x), out->x + i);
  Store(Truncated(pixels.position.y), out->y + i);
  const Ints x_radius = HalfClamped(Truncated(pixels.extent.x), 65536, 1048576);
  const Ints y_radius = HalfClamped(Truncated(pixels.extent.y), 65536, 1048576);
  const Doubles product = FromInts(x_radius) * FromInts(y_radius);
  StoreBoxes(x_radius, y_radius, TimesFour(Truncated(product * Broadcast(1.0 / 65536.0))), out->box + i);
}

inline Doubles Extent(const Doubles& centre, const Doubles& right, const Doubles& lower_right, const Doubles& lower) {
  return Larger(Larger(Magnitude(right - centre), Magnitude(lower_right - centre)), Magnitude(lower - centre));
}

// Every quotient by itself, as the definition has it.
inline Untruncated MeasureExactly(const Stretch<Neighbourhood>& at, const InputScale& scale) {
  const Doubles fixed = Broadcast(65536.0);
  const Doubles half = Broadcast(0.5);
  const auto measure = [&](const Neighbourhood& p, double to_input, Doubles* position, Doubles* extent) {
    const Doubles centre = p.centre / at.w.centre;
    const Doubles scaled = centre * Broadcast(to_input);
    *position = scaled * fixed + WithSignOf(half, scaled);
    *extent = Extent(centre, p.right / at.w.right, p.lower_right / at.w.lower_right, p.lower / at.w.lower) *
                  Broadcast(to_input) * fixed +
              half;
  };
  Untruncated measured;
  measure(at.u, scale.x, &measured.position.x, &measured.extent.x);
  measure(at.v, scale.y, &measured.position.y, &measured.extent.y);
  return measured;
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

// A block's pixels, measured with one division for all quotients of a pixel, and without the walk's roundings.
class NearBlock {
 public:
  NearBlock(const RowWalk& walk, const InputScale& scale)
      : u_(Broadcast(walk.u.at)),
        v_(Broadcast(walk.v.at)),
        w_(Broadcast(walk.w.at)),
        right_{Broadcast(walk.u.right), Broadcast(walk.v.right), Broadcast(walk.w.right)},
        down_{Broadcast(walk.u.down), Broadcast(walk.v.down), Broadcast(walk.w.down)},
        diagonal_{right_.u + down_.u, right_.v + down_.v, right_.w + down_.w},
        x_scale_(Broadcast(scale.x * 65536.0)),
        y_scale_(Broadcast(scale.y * 65536.0)) {}

  // The pixels of these numbers, the first of a block being 1.
  Untruncated Measure(const Doubles& pixel) const {
    const Doubles w = MultiplyAdd(pixel, right_.w, w_);
    const Doubles right_w = w + right_.w;
    const Doubles diagonal_w = w + diagonal_.w;
    const Doubles down_w = w + down_.w;
    const Doubles upper = w * right_w;
    const Doubles lower = diagonal_w * down_w;
    const Doubles reciprocal = Broadcast(1.0) / (upper * lower);
    const Doubles upper_reciprocal = reciprocal * lower;
    const Doubles lower_reciprocal = reciprocal * upper;
    const Doubles own_reciprocal = upper_reciprocal * right_w;
    const Distances to{upper_reciprocal * w, lower_reciprocal * down_w, lower_reciprocal * diagonal_w};
    const Doubles x = MultiplyAdd(pixel, right_.u, u_) * own_reciprocal;
    const Doubles y = MultiplyAdd(pixel, right_.v, v_) * own_reciprocal;
    const Doubles half = Broadcast(0.5);
    return {{MultiplyAdd(x, x_scale_, WithSignOf(half, x)), MultiplyAdd(y, y_scale_, WithSignOf(half, y))},
            {MultiplyAdd(NearExtent(x, right_.u, diagonal_.u, down_.u, to), x_scale_, half),
             MultiplyAdd(NearExtent(y, right_.v, diagonal_.v, down_.v, to), y_scale_, half)}};
  }

 private:
  struct Step {
    Doubles u;
    Doubles v;
    Doubles w;
  };
  // The reciprocals of the neighbours' divisors.
  struct Distances {
    Doubles right;
    Doubles diagonal;
    Doubles down;
  };

  // From a quotient p = u / w to a neighbour's it is (du - p dw) / (w + dw), for a step (du, dw).
  Doubles NearExtent(const Doubles& position, const Doubles& right, const Doubles& diagonal, const Doubles& down,
                     const Distances& to) const {
    const Doubles right_distance = SubtractProduct(right, position, right_.w) * to.right;
    const Doubles diagonal_distance = SubtractProduct(diagonal, position, diagonal_.w) * to.diagonal;
    const Doubles down_distance = SubtractProduct(down, position, down_.w) * to.down;
    return LargerMagnitude(LargerMagnitude(right_distance, diagonal_distance), down_distance);
  }

  Doubles u_;
  Doubles v_;
  Doubles w_;
  Step right_;
  Step down_;
  Step diagonal_;
  Doubles x_scale_;
  Doubles y_scale_;
};

// Whether numbers that may be off by `error` are sure to truncate as the exact ones do.
inline bool TruncatesAlike(const Untruncated& near, const Doubles& error) {
  const Doubles to_whole = SmallerMagnitude(SmallerMagnitude(ToWhole(near.position.x), ToWhole(near.position.y)),
                                            SmallerMagnitude(ToWhole(near.extent.x), ToWhole(near.extent.y)));
  return AllGreater(to_whole, error);
}

// The vector at pixel i of a block that begins at `begin`, in which no divisor is near 0.
[[gnu::noinline]] Untruncated MeasureExactlyAt(const RowWalk& begin, int i, const InputScale& scale) {
  RowWalk walk = begin;
  WalkRound(&walk, i);
  return MeasureExactly(WalkOneByOne<Neighbourhood>(&walk), scale);
}

void ComputeNearBlock(RowWalk* walk, const InputScale& scale, double largest_error, int end, PixelBlock* out) {
  const NearBlock block(*walk, scale);
  const Doubles error = Broadcast(largest_error);
  Doubles pixel = Ramp();
  for (int i = 0; i < end; i += kLanes) {
    Untruncated measured = block.Measure(pixel);
    if (!TruncatesAlike(measured, error)) [[unlikely]] {
      measured = MeasureExactlyAt(*walk, i, scale);
    }
    StoreFootprints(measured, i, out);
    pixel = pixel + Broadcast(kLanes);
  }
  WalkRound(walk, end);
}

bool Footprints(RowWalk* walk, const InputScale& scale, int count, PixelBlock* out) {
  const int end = WholeVectors(count);
  const double largest_error = LargestError(*walk, scale);
  if (largest_error < 0x1p-7) {
    ComputeNearBlock(walk, scale, largest_error, end, out);
    return false;
  }
  const double reach = __builtin_fabs(walk->w.right) + __builtin_fabs(walk->w.down);
  bool any_nowhere = false;
  for (int i = 0; i < end; i += kLanes) {
    RowWalk ahead = *walk;
    const Stretch<Neighbourhood> at = WalkOneByOne<Neighbourhood>(&ahead);
    if (HasSafeDivisors(at.w.centre, reach)) {
      StoreFootprints(MeasureExactly(at, scale), i, out);
      *walk = ahead;
    } else {
      any_nowhere = ComputePlainly(PlainFootprints, walk, scale, i, any_nowhere, out);
    }
  }
  return any_nowhere;
}

constexpr RowBlockFunctions kFunctions{Positions, Footprints};

}  // namespace
