// The footprints of a batch, in vectors. Included only by PixelBatchVector.inl.

namespace {

// ---- Boxes ---------------------------------------------------------------------------------------------------------

// The extents of a batch's footprints, 16.16, not clamped yet.
struct Extents {
  std::int32_t x[kBatchPixels];
  std::int32_t y[kBatchPixels];
};

// The radii of eight boxes along one axis, 16.16.
inline __m256i radii(const std::int32_t* extents) {
  const __m256i extent = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(extents));
  const __m256i clamped =
      _mm256_min_epi32(_mm256_max_epi32(extent, _mm256_set1_epi32(kSmallestExtent)), _mm256_set1_epi32(kLargestExtent));
  return _mm256_srai_epi32(clamped, 1);
}

// The areas of boxes whose two radii are packed into 64-bit lanes.
inline __m256i areas(__m256i radii) {
  const __m256i products = _mm256_mul_epu32(radii, _mm256_srli_epi64(radii, 32));
  return _mm256_slli_epi64(_mm256_srli_epi64(products, 16), 2);
}

// The boxes of the pixels [first, end).
inline void storeBoxes(const Extents& extents, int first, int end, PixelBatch* out) {
  for (int i = first; i < end; i += kStepPixels) {
    const __m256i x = radii(extents.x + i);
    const __m256i y = radii(extents.y + i);
    const __m256i low = _mm256_unpacklo_epi32(x, y);
    const __m256i high = _mm256_unpackhi_epi32(x, y);
    const __m256i low_areas = areas(low);
    const __m256i high_areas = areas(high);
    // In each vector the lower box belongs to one of the first four pixels, the upper one to one of the last four.
    const __m256i boxes[4] = {_mm256_unpacklo_epi64(low, low_areas), _mm256_unpackhi_epi64(low, low_areas),
                              _mm256_unpacklo_epi64(high, high_areas), _mm256_unpackhi_epi64(high, high_areas)};
    __m128i* const to = reinterpret_cast<__m128i*>(out->box + i);
    for (int k = 0; k < 4; ++k) {
      _mm_storeu_si128(to + k, _mm256_castsi256_si128(boxes[k]));
      _mm_storeu_si128(to + k + 4, _mm256_extracti128_si256(boxes[k], 1));
    }
  }
}

// ---- Exact footprints ----------------------------------------------------------------------------------------------

// One coordinate of a vector's pixels and of their neighbours, in the order in which the stepper visits them.
struct Footprint {
  Doubles centre;
  Doubles right;
  Doubles lower_right;
  Doubles lower;
};

struct FootprintVectors {
  Footprint u, v, w;
};

inline Footprint visitNeighbours(Stepper* stepper) {
  double centre[kLanes];
  double right[kLanes];
  double lower_right[kLanes];
  double lower[kLanes];
  for (int i = 0; i < kLanes; ++i) {
    centre[i] = stepper->at + stepper->right;
    right[i] = centre[i] + stepper->right;
    lower_right[i] = right[i] + stepper->down;
    lower[i] = lower_right[i] - stepper->right;
    stepper->at = lower[i] - stepper->down;
  }
  stepper->range = 0;
  return {load(centre), load(right), load(lower_right), load(lower)};
}

[[gnu::noinline]] FootprintVectors visitNeighbours(IncrementalMap* map) {
  return {visitNeighbours(&map->u), visitNeighbours(&map->v), visitNeighbours(&map->w)};
}

inline Doubles largestDistance(Doubles centre, Doubles right, Doubles lower_right, Doubles lower) {
  return maxOrSecond(abs(lower - centre), maxOrSecond(abs(lower_right - centre), abs(right - centre)));
}

// The vector of pixels starting at i, with a separate division for every quotient, as in the definition.
inline void measureExactly(const FootprintVectors& at, const InputScale& scale, int i, Extents* extents,
                           PixelBatch* out) {
  const Doubles fixed = set(kFixedOne);
  const Doubles half = set(0.5);
  const auto measure = [&](const Footprint& p, double to_input, std::int32_t* position, std::int32_t* extent) {
    const Doubles centre = p.centre / at.w.centre;
    const Doubles scaled = centre * set(to_input);
    const Doubles scaled_extent =
        largestDistance(centre, p.right / at.w.right, p.lower_right / at.w.lower_right, p.lower / at.w.lower) *
        set(to_input);
    store(truncate(scaled * fixed + copySign(half, scaled)), position + i);
    store(truncate(scaled_extent * fixed + half), extent + i);
  };
  measure(at.u, scale.x, out->x, extents->x);
  measure(at.v, scale.y, out->y, extents->y);
}

// For batches near the horizon, and for maps for which the approximation's error has no bound.
[[gnu::noinline]] bool exactFootprints(IncrementalMap* map, const InputScale& scale, int count, PixelBatch* out) {
  Extents extents;
  // A divisor above this has no neighbour whose divisor is 0.
  const Doubles safe_divisor = set(2.0 * (__builtin_fabs(map->w.right) + __builtin_fabs(map->w.down)));
  clearAtInfinity(out);
  bool any_at_infinity = false;
  for (int i = 0; i < count; i += kStepPixels) {
    IncrementalMap ahead = *map;
    bool is_safe = true;
    for (int k = i; is_safe && k < i + kStepPixels; k += kLanes) {
      const FootprintVectors at = visitNeighbours(&ahead);
      is_safe = allGreater(abs(at.w.centre), safe_divisor);
      measureExactly(at, scale, k, &extents, out);
    }
    if (is_safe) {
      storeBoxes(extents, i, i + kStepPixels, out);
      *map = ahead;
    } else {
      any_at_infinity = scalarFootprints(map, scale, i, i + kStepPixels, out) || any_at_infinity;
    }
  }
  return any_at_infinity;
}

// ---- Approximate footprints ----------------------------------------------------------------------------------------

// One division per pixel instead of eight, without the rounding of each step. A result is kept if the error bound shows
// that it rounds to the same 16.16 number as the exact one; the few ambiguous vectors are measured again exactly.

// Return the second number if either is a NaN.
inline double minOrSecond(double a, double b) {
  return a < b ? a : b;
}
inline double maxOrSecond(double a, double b) {
  return a > b ? a : b;
}

// The smallest and the largest magnitude among the pixels and their neighbours, accurate enough for the bounds below;
// NaN if any of them is NaN.
struct Magnitudes {
  double smallest;  // 0 if the sign changes
  double largest;
};

inline Magnitudes magnitudesOf(const Stepper& stepper, int pixels) {
  const double last = stepper.at + (pixels + 1) * stepper.right;
  const double low = minOrSecond(stepper.at, last) + minOrSecond(0.0, stepper.down);
  const double high = maxOrSecond(stepper.at, last) + maxOrSecond(0.0, stepper.down);
  const double smallest = low > 0.0 ? low : high < 0.0 ? -high : 0.0;
  return {smallest, maxOrSecond(high, -low)};
}

// A bound on the error of approximate positions and extents over the next `pixels` pixels, in 1/65536 pixel; infinite
// where approximations must not be used.
//
// Each addition of a stepper has an error of at most 2^-53 times the largest magnitude. A batch makes fewer than 5 * 64
// + 4 of them, so u, v and w are off by less than 2^-44.6 of their largest magnitudes. If the magnitudes of the
// divisors are within a factor of 8 of each other, a quotient is therefore off by less than 2^-41.4 of the largest u or
// v over the smallest w, and the distance between two quotients by less than twice that. The approximation's own
// rounding errors are far smaller.
inline double approximationError(const IncrementalMap& map, const InputScale& scale, int pixels) {
  const Magnitudes u = magnitudesOf(map.u, pixels);
  const Magnitudes v = magnitudesOf(map.v, pixels);
  const Magnitudes w = magnitudesOf(map.w, pixels);
  // Each of these comparisons is false for NaN.
  const bool is_well_conditioned =
      w.smallest > 0x1p-100 && w.largest < 0x1p100 && w.largest < 8.0 * w.smallest && scale.x > 0.0 && scale.y > 0.0;
  const double farthest = maxOrSecond(u.largest * scale.x, v.largest * scale.y) * kFixedOne / w.smallest;
  return is_well_conditioned && farthest < 0x1p30 ? farthest * 0x1p-39 + 0x1p-30 : __builtin_inf();
}

// Whether the next batch may be approximated; stores the error bound in the map. The bound is computed for several
// batches at once or, if it is too large for these, for the next batch alone.
inline bool allowsApproximation(IncrementalMap* map, const InputScale& scale, int pixels) {
  constexpr double kLargestError = 0x1p-7;
  constexpr int kPixelsAhead = 4 * kBatchPixels;
  if (map->error_pixels < pixels) {
    const int wanted = map->w.wanted;
    map->error_pixels = wanted > pixels && wanted < kPixelsAhead ? wanted : kPixelsAhead;
    map->error = approximationError(*map, scale, map->error_pixels);
    if (!(map->error < kLargestError)) {
      map->error = approximationError(*map, scale, pixels);
      map->error_pixels = pixels;
    }
  }
  map->error_pixels -= pixels;
  return map->error < kLargestError;
}

// The quotients of a batch's pixels, of some pixels beyond the batch, and of the pixels below all of these. A pixel's
// right neighbour is the next pixel, its lower right neighbour the one below that.
struct ApproximateQuotients {
  static constexpr int kPixels = kBatchPixels + kLanes;
  double x[kPixels];
  double y[kPixels];
  double lower_x[kPixels];
  double lower_y[kPixels];
};

// One division gives all four quotients of a pixel.
inline void approximateQuotients(const IncrementalMap& map, int count, ApproximateQuotients* out) {
  struct Terms {
    Doubles at;
    Doubles right;
    Doubles down;
  };
  const auto terms_of = [](const Stepper& c) { return Terms{set(c.at), set(c.right), set(c.down)}; };
  const Terms u = terms_of(map.u);
  const Terms v = terms_of(map.v);
  const Terms w = terms_of(map.w);
  Doubles pixel = iota();
  for (int i = 0; i < count + kLanes; i += kLanes) {
    const Doubles own_w = mulAdd(pixel, w.right, w.at);
    const Doubles lower_w = own_w + w.down;
    const Doubles reciprocal = set(1.0) / (own_w * lower_w);
    const Doubles own = reciprocal * lower_w;
    const Doubles lower = reciprocal * own_w;
    const Doubles own_u = mulAdd(pixel, u.right, u.at);
    const Doubles own_v = mulAdd(pixel, v.right, v.at);
    store(own_u * own, out->x + i);
    store(own_v * own, out->y + i);
    store((own_u + u.down) * lower, out->lower_x + i);
    store((own_v + v.down) * lower, out->lower_y + i);
    pixel = pixel + set(kLanes);
  }
}

// Adding this to a number of magnitude up to 2^31 rounds it to an integer, which is then in the low bits of the sum.
constexpr double kRoundingShift = 0x1.8p52;

struct Rounded {
  Doubles shifted;   // the whole number plus kRoundingShift
  Doubles distance;  // from the whole number to the number before rounding
};

// number * factor, rounded to nearest.
inline Rounded roundProduct(Doubles number, Doubles factor) {
  const Doubles shift = set(kRoundingShift);
  const Doubles shifted = mulAdd(number, factor, shift);
  return {shifted, mulSub(number, factor, shifted - shift)};
}

using VectorSet = unsigned;  // vectors of a batch, a bit each

// A batch's positions and extents along one axis, from approximate quotients. Returns the ambiguous vectors: those with
// a number that, with an error of up to `error`, might round differently from the exact one.
inline VectorSet measureAxis(const double* own, const double* lower, double to_input, double error, int count,
                             std::int32_t* positions, std::int32_t* extents) {
  const Doubles scale = set(to_input * kFixedOne);
  const Doubles most = set(0.5 - error);
  VectorSet ambiguous = 0;
  for (int i = 0; i < count; i += kLanes) {
    const Doubles place = load(own + i);
    const Doubles farthest =
        maxAbs(maxAbs(load(own + i + 1) - place, load(lower + i + 1) - place), load(lower + i) - place);
    const Rounded position = roundProduct(place, scale);
    const Rounded extent = roundProduct(farthest, scale);
    const bool is_certain = allGreater(most, maxAbs(position.distance, extent.distance));
    ambiguous |= static_cast<VectorSet>(!is_certain) << (i / kLanes);
    store(intsOfShifted(position.shifted, set(kRoundingShift)), positions + i);
    store(intsOfShifted(extent.shifted, set(kRoundingShift)), extents + i);
  }
  return ambiguous;
}

// Measures exactly the vector at pixel i of a batch that begins at `begin` and in which no divisor is near 0;
// `is_in_range` says whether the whole batch lies in the constant-exponent ranges.
[[gnu::noinline]] void measureAgain(const IncrementalMap& begin, bool is_in_range, const InputScale& scale, int i,
                                    Extents* extents, PixelBatch* out) {
  if (is_in_range) {
    const auto footprint = [i](const Stepper& c) {
      const Doubles centre = mulAdd(iota() + set(i), set(c.increment), set(c.at));
      const Doubles right = centre + set(c.right);
      const Doubles lower_right = right + set(c.down);
      return Footprint{centre, right, lower_right, lower_right - set(c.right)};
    };
    measureExactly({footprint(begin.u), footprint(begin.v), footprint(begin.w)}, scale, i, extents, out);
  } else {
    IncrementalMap map = begin;
    advanceVisitingNeighbours(&map, i);
    measureExactly(visitNeighbours(&map), scale, i, extents, out);
  }
}

bool footprints(IncrementalMap* map, const InputScale& scale, int count, PixelBatch* out) {
  const int end = wholeSteps(count);
  if (!allowsApproximation(map, scale, end)) {
    return exactFootprints(map, scale, end, out);
  }
  ApproximateQuotients quotients;
  Extents extents;
  approximateQuotients(*map, end, &quotients);
  VectorSet ambiguous = measureAxis(quotients.x, quotients.lower_x, scale.x, map->error, end, out->x, extents.x) |
                        measureAxis(quotients.y, quotients.lower_y, scale.y, map->error, end, out->y, extents.y);
  const bool is_in_range = rangeAhead(map) >= end;
  for (; ambiguous != 0; ambiguous &= ambiguous - 1) {
    measureAgain(*map, is_in_range, scale, __builtin_ctz(ambiguous) * kLanes, &extents, out);
  }
  storeBoxes(extents, 0, end, out);
  if (is_in_range) {
    advanceInRange(map, end);
  } else {
    advanceVisitingNeighbours(map, end);
  }
  return false;
}

}  // namespace
