// The search for the constant-exponent ranges of all coordinates at once, for rows that lie wholly in them, as most
// short ones do. Included only by PixelBatchVector.inl.

namespace {

inline __m256d ofEach(double u, double v, double w) {
  return _mm256_set_pd(w, w, v, u);
}

inline __m256d magnitude(__m256d a) {
  return _mm256_andnot_pd(_mm256_set1_pd(-0.0), a);
}

// All ones in the lanes whose two numbers have the same sign and exponent.
inline __m256i haveSameExponent(__m256d a, __m256d b) {
  const __m256i differing = _mm256_xor_si256(_mm256_castpd_si256(a), _mm256_castpd_si256(b));
  return _mm256_cmpeq_epi64(_mm256_srli_epi64(differing, 52), _mm256_setzero_si256());
}

// Takes the wanted ranges of the coordinates that keep their exponents in them. The conditions are those of the search
// in IncrementalMap.cpp, which explains them.
inline void takeWantedRanges(IncrementalMap* map) {
  Stepper& u = map->u;
  Stepper& v = map->v;
  Stepper& w = map->w;
  const __m256d zero = _mm256_setzero_pd();
  const __m256d at = ofEach(u.at, v.at, w.at);
  const __m256d exact_right = ofEach(u.right, v.right, w.right);
  const __m256d exact_down = ofEach(u.down, v.down, w.down);
  const __m256d right = at + exact_right - at;
  const __m256d down = at + exact_down - at;
  const __m256d rest = _mm256_max_pd(magnitude(exact_right - right), magnitude(exact_down - down));

  const __m256i exponent = _mm256_and_si256(_mm256_castpd_si256(at), _mm256_set1_epi64x(0x7FF0000000000000));
  const __m256i is_normal =
      _mm256_and_si256(_mm256_cmpgt_epi64(exponent, _mm256_set1_epi64x(std::int64_t{52} << 52)),
                       _mm256_cmpgt_epi64(_mm256_set1_epi64x(std::int64_t{0x7FE} << 52), exponent));
  const __m256d last_bit = _mm256_castsi256_pd(_mm256_sub_epi64(exponent, _mm256_set1_epi64x(std::int64_t{52} << 52)));
  const __m256d is_rounded_alike = _mm256_cmp_pd(rest + rest, last_bit, _CMP_LT_OQ);

  const __m256d wanted = ofEach(u.wanted, v.wanted, w.wanted);
  const __m256d last = at + (wanted + _mm256_set1_pd(1.0)) * right;
  const __m256d low = _mm256_min_pd(at, last) + _mm256_min_pd(down, zero) - rest;
  const __m256d high = _mm256_max_pd(at, last) + _mm256_max_pd(down, zero) + rest;
  const __m256i is_held = _mm256_and_si256(haveSameExponent(low, at), haveSameExponent(high, at));

  const int held =
      _mm256_movemask_pd(_mm256_and_pd(_mm256_castsi256_pd(_mm256_and_si256(is_normal, is_held)), is_rounded_alike));
  alignas(32) double increments[4];
  _mm256_store_pd(increments, right);
  Stepper* const steppers[] = {&u, &v, &w};
  for (int i = 0; i < 3; ++i) {
    if ((held >> i & 1) != 0) {
      steppers[i]->increment = increments[i];
      steppers[i]->range = steppers[i]->wanted;
    }
  }
}

// As constantExponentRange().
inline int rangeAhead(IncrementalMap* map) {
  if ((map->u.range | map->v.range | map->w.range) == 0 && map->w.wanted > 0) {
    takeWantedRanges(map);
  }
  const int shorter = map->u.range < map->v.range ? map->u.range : map->v.range;
  const int shortest = shorter < map->w.range ? shorter : map->w.range;
  return shortest > 0 ? shortest : constantExponentRange(map);
}

}  // namespace
