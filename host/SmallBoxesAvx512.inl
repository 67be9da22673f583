// The smallest boxes of the AVX-512 area samplers, which most pixels need: two pixels of a row at once, without a loop
// and, but for their place, without a branch. Included by AreaSamplerAvx512.cpp alone.
#include "host/VectorDepths.inl"

namespace vantorel::host {

namespace {

// ---- 8 and 16 bit: in integers of 64 bits --------------------------------------------------------------------------

inline __m512i widenPair64(const std::byte* pixels, Depth8) {
  return _mm512_cvtepu8_epi64(loadBytes8(pixels));
}
inline __m512i widenPair64(const std::byte* pixels, Depth16) {
  return _mm512_cvtepu16_epi64(loadBytes16(pixels));
}
inline __m256i widenOne64(const std::byte* pixel, Depth8) {
  return _mm256_cvtepu8_epi64(loadBytes4(pixel));
}
inline __m256i widenOne64(const std::byte* pixel, Depth16) {
  return _mm256_cvtepu16_epi64(loadBytes8(pixel));
}

inline void storeLow(__m256i lanes, PF_Pixel8* out) {
  _mm256_mask_cvtepi64_storeu_epi8(out, 0xF, lanes);
}
inline void storeLow(__m256i lanes, PF_Pixel16* out) {
  _mm256_mask_cvtepi64_storeu_epi16(out, 0xF, lanes);
}
inline void storeLow(__m128i lanes, PF_Pixel8* out) {
  _mm_mask_cvtepi32_storeu_epi8(out, 0xF, lanes);
}
inline void storeLow(__m128i lanes, PF_Pixel16* out) {
  _mm_mask_cvtepi32_storeu_epi16(out, 0xF, lanes);
}

// The first pixel's channels in the lower half of the lanes, the second one's in the upper half.
inline __m512i firstAndSecond(std::int64_t first, std::int64_t second) {
  return _mm512_set_epi64(second, second, second, second, first, first, first, first);
}

inline __m256i sumOfHalves(__m512i lanes) {
  return _mm256_add_epi64(_mm512_castsi512_si256(lanes), _mm512_extracti64x4_epi64(lanes, 1));
}

// The mean of the two by two pixels at `pixel`, of which the second column and row weigh `x` and `y`.
template <typename Depth>
inline void sampleSquare(const std::byte* pixel, std::ptrdiff_t row_bytes, std::int32_t x, std::int32_t y,
                         typename Depth::Pixel* out) {
  const __m512i below = _mm512_set1_epi64(y);
  const __m512i above = _mm512_sub_epi64(_mm512_set1_epi64(65536), below);
  const __m512i columns = _mm512_add_epi64(_mm512_mul_epu32(widenPair64(pixel, Depth{}), above),
                                           _mm512_mul_epu32(widenPair64(pixel + row_bytes, Depth{}), below));
  // In the lower half 65536 - x, in the upper one x.
  const __m512i weights =
      _mm512_add_epi64(_mm512_xor_si512(_mm512_set1_epi64(x), firstAndSecond(-1, 0)), firstAndSecond(65537, 0));
  const __m256i total = sumOfHalves(_mm512_mul_epu32(columns, weights));
  const __m256i rounded = _mm256_add_epi64(total, _mm256_set1_epi64x(std::int64_t{1} << 31));
  storeLow(_mm256_srli_epi64(rounded, 32), out);
}

// The weights of the pixels that begin at `pixel` along an axis, of which the box covers [begin, end).
inline __m512i overlaps(__m512i begin, __m512i end, __m512i pixel, __m512i next) {
  return _mm512_sub_epi64(_mm512_min_epu32(end, next), _mm512_max_epu32(begin, pixel));
}

// The mean of a box that lies within the three by three pixels at `pixel`.
template <typename Depth>
inline void sampleThreeByThree(const std::byte* pixel, std::ptrdiff_t row_bytes, const SmallBox& box,
                               typename Depth::Pixel* out) {
  const __m512i one = _mm512_set1_epi64(65536);
  const __m512i two = _mm512_set1_epi64(131072);
  const __m512i top = _mm512_set1_epi64(box.top);
  const __m512i bottom = _mm512_set1_epi64(box.top + box.height);
  const __m512i y[3] = {_mm512_sub_epi64(one, top), _mm512_sub_epi64(_mm512_min_epu32(bottom, two), one),
                        _mm512_sub_epi64(_mm512_max_epu32(bottom, two), two)};
  __m512i first_two = _mm512_setzero_si512();
  __m256i third = _mm256_setzero_si256();
  for (int row = 0; row < 3; ++row, pixel += row_bytes) {
    first_two = _mm512_madd52lo_epu64(first_two, widenPair64(pixel, Depth{}), y[row]);
    third = _mm256_madd52lo_epu64(third, widenOne64(pixel + 2 * Depth::kPixelBytes, Depth{}),
                                  _mm512_castsi512_si256(y[row]));
  }
  const __m512i left = _mm512_set1_epi64(box.left);
  const __m512i right = _mm512_set1_epi64(box.left + box.width);
  const __m512i x = overlaps(left, right, firstAndSecond(0, 65536), firstAndSecond(65536, 131072));
  const __m256i x_third = _mm256_sub_epi64(_mm256_max_epu32(_mm512_castsi512_si256(right), _mm512_castsi512_si256(two)),
                                           _mm512_castsi512_si256(two));
  const __m256i total =
      _mm256_madd52lo_epu64(sumOfHalves(_mm512_madd52lo_epu64(_mm512_setzero_si512(), first_two, x)), third, x_third);
  const __m256d area = _mm256_set1_pd(static_cast<double>(static_cast<std::int64_t>(box.width) * box.height));
  storeLow(roundedQuotient(_mm256_cvtepu64_pd(total), area), out);
}

// ---- float: in doubles ---------------------------------------------------------------------------------------------

inline __m512d widenPairs(const std::byte* pixels, __mmask8 met) {
  return _mm512_maskz_cvtps_pd(met, _mm256_loadu_ps(reinterpret_cast<const float*>(pixels)));
}

// Weights of 0 belong to pixels that the box does not meet, which may be infinite or NaN.
inline __mmask8 isMet(__m512d weights) {
  return _mm512_cmp_pd_mask(weights, _mm512_setzero_pd(), _CMP_NEQ_OQ);
}

template <>
inline void sampleSquare<DepthFloat>(const std::byte* pixel, std::ptrdiff_t row_bytes, std::int32_t x, std::int32_t y,
                                     PF_PixelFloat* out) {
  // In the lower half 65536 - x or y, in the upper one x or y; those of the rows over the area.
  const __m512d from = _mm512_set_pd(0, 0, 0, 0, 65536, 65536, 65536, 65536);
  const __m512i sign = firstAndSecond(static_cast<std::int64_t>(std::uint64_t{1} << 63), 0);
  const auto weightsOf = [&](std::int32_t second) {
    const __m512d weight = _mm512_set1_pd(second);
    return _mm512_add_pd(_mm512_castsi512_pd(_mm512_xor_si512(_mm512_castpd_si512(weight), sign)), from);
  };
  const __m512d columns = weightsOf(x);
  const __m512d rows = weightsOf(y);
  const __mmask8 met = isMet(columns);
  const __m512d upper = _mm512_mul_pd(columns, widenPairs(pixel, met));
  const __m512d lower = _mm512_mul_pd(columns, widenPairs(pixel + row_bytes, met));
  const __m512d left = _mm512_shuffle_f64x2(upper, lower, 0x44);
  const __m512d right = _mm512_shuffle_f64x2(upper, lower, 0xEE);
  const __m512d weighted = _mm512_mul_pd(rows, _mm512_maskz_add_pd(isMet(rows), left, right));
  // Sums begin at 0, which -0 shows.
  const __m256d total = _mm256_add_pd(_mm256_add_pd(_mm256_setzero_pd(), _mm512_castpd512_pd256(weighted)),
                                      _mm512_extractf64x4_pd(weighted, 1));
  DepthFloat::store(_mm256_mul_pd(total, _mm256_set1_pd(0x1p-32)), out);
}

inline __m256d widenMet(const std::byte* pixel, __mmask8 met) {
  return _mm256_maskz_cvtps_pd(met, _mm_loadu_ps(reinterpret_cast<const float*>(pixel)));
}

// The weights of an axis's three pixels, of which the box covers [begin, begin + length).
struct ThreeWeights {
  __m256d weight[3];
  __mmask8 met[3];
};

inline ThreeWeights threeWeights(std::int32_t begin, std::int32_t length) {
  const __m128i one = _mm_set1_epi32(65536);
  const __m128i two = _mm_set1_epi32(131072);
  const __m128i first = _mm_set1_epi32(begin);
  const __m128i last = _mm_set1_epi32(begin + length);
  const __m128i overlaps[3] = {_mm_sub_epi32(one, first), _mm_sub_epi32(_mm_min_epi32(last, two), one),
                               _mm_sub_epi32(_mm_max_epi32(last, two), two)};
  ThreeWeights weights;
  for (int i = 0; i < 3; ++i) {
    weights.weight[i] = _mm256_cvtepi32_pd(overlaps[i]);
    weights.met[i] = _mm_test_epi32_mask(overlaps[i], overlaps[i]);
  }
  return weights;
}

template <>
inline void sampleThreeByThree<DepthFloat>(const std::byte* pixel, std::ptrdiff_t row_bytes, const SmallBox& box,
                                           PF_PixelFloat* out) {
  const ThreeWeights x = threeWeights(box.left, box.width);
  const ThreeWeights y = threeWeights(box.top, box.height);
  __m256d total = _mm256_setzero_pd();
  for (int row = 0; row < 3; ++row, pixel += row_bytes) {
    __m256d sum = _mm256_mul_pd(x.weight[0], DepthFloat::widen(pixel));
    sum = _mm256_fmadd_pd(x.weight[1], widenMet(pixel + DepthFloat::kPixelBytes, x.met[1]), sum);
    sum = _mm256_fmadd_pd(x.weight[2], widenMet(pixel + 2 * DepthFloat::kPixelBytes, x.met[2]), sum);
    total = _mm256_add_pd(total, _mm256_maskz_mul_pd(y.met[row], y.weight[row], sum));
  }
  const double area = static_cast<double>(box.width) * static_cast<double>(box.height);
  DepthFloat::store(_mm256_mul_pd(total, _mm256_set1_pd(1.0 / area)), out);
}

}  // namespace

}  // namespace vantorel::host
