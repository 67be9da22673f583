// The area samplers with AVX-512 (F, DQ, VL, BW, IFMA); called only if the processor has them. This file has the small
// boxes of 8 and 16-bit pixels, which nearly all samples use: without loops or branches, summed in 64-bit integers, two
// pixels of a row at once.
#include "host/sampling/SimdPixels.inl"

namespace vantorel::host {

namespace {

inline __m512i widenPair64(const std::byte* pixels, Pixels8) {
  return _mm512_cvtepu8_epi64(loadBytes8(pixels));
}
inline __m512i widenPair64(const std::byte* pixels, Pixels16) {
  return _mm512_cvtepu16_epi64(loadBytes16(pixels));
}
inline __m256i widenOne64(const std::byte* pixel, Pixels8) {
  return _mm256_cvtepu8_epi64(loadBytes4(pixel));
}
inline __m256i widenOne64(const std::byte* pixel, Pixels16) {
  return _mm256_cvtepu16_epi64(loadBytes8(pixel));
}

inline void storeLow(__m256i lanes, PF_Pixel8* out) {
  const int bytes = _mm_cvtsi128_si32(_mm256_cvtepi64_epi8(lanes));
  __builtin_memcpy(out, &bytes, 4);
}
inline void storeLow(__m256i lanes, PF_Pixel16* out) {
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm256_cvtepi64_epi16(lanes));
}

inline __m256i constant256(const std::int64_t* lanes) {
  return _mm256_load_si256(reinterpret_cast<const __m256i*>(lanes));
}
inline __m512i constant512(const std::int64_t* lanes) {
  return _mm512_load_si512(lanes);
}

inline __m256i sumOfHalves(__m512i lanes) {
  return _mm256_add_epi64(_mm512_castsi512_si256(lanes), _mm512_extracti64x4_epi64(lanes, 1));
}

// left * 65536 + (right - left) * weight, for column sums of either depth.
inline __m256i mixColumns(__m256i left, __m256i right, std::int32_t weight, Pixels8) {
  const __m256i rise = _mm256_mul_epi32(_mm256_sub_epi64(right, left), _mm256_set1_epi64x(weight));
  return _mm256_add_epi64(_mm256_slli_epi64(left, 16), rise);
}
inline __m256i mixColumns(__m256i left, __m256i right, std::int32_t weight, Pixels16) {
  // right - left would not fit into 32 bits.
  return _mm256_add_epi64(_mm256_mul_epu32(left, _mm256_set1_epi64x(kOnePixel - weight)),
                          _mm256_mul_epu32(right, _mm256_set1_epi64x(weight)));
}

// The mean of the two by two pixels at `pixel`, where the second column has the weight `x` and the second row the
// weight `y`.
template <typename Pixels>
inline void meanOfTwoByTwo(const std::byte* pixel, std::ptrdiff_t row_bytes, std::int32_t x, std::int32_t y,
                           typename Pixels::Pixel* out) {
  const __m512i upper = widenPair64(pixel, Pixels{});
  const __m512i lower = widenPair64(pixel + row_bytes, Pixels{});
  const __m512i rise = _mm512_mul_epi32(_mm512_sub_epi64(lower, upper), _mm512_set1_epi64(y));
  const __m512i columns = _mm512_add_epi64(_mm512_slli_epi64(upper, 16), rise);
  const __m256i total = mixColumns(_mm512_castsi512_si256(columns), _mm512_extracti64x4_epi64(columns, 1), x, Pixels{});
  const __m256i rounded = _mm256_add_epi64(total, constant256(kVectorConstants.rounding));
  storeLow(_mm256_srli_epi64(rounded, 32), out);
}

// sum / area rounded to nearest, halves up, in the low bits of 64-bit lanes, for whole sums and for areas that are
// multiples of 4 up to 9 * 2^32. Adding 2^52, whose ulp is 1, makes the processor round to a whole number. The
// reciprocal, which need not wait for the sum, is deliberately too large, by a relative 2^-53 to 2^-51.4. Quotients,
// which are below 2^16, are therefore too large by at most 2^-35.4: a tie ends up above the half and is rounded up. A
// quotient below a half is at least 1 / area, or 2^-35.2, below it, so no other quotient is affected.
inline __m256i roundedQuotientBits(__m256d sum, __m256d area) {
  const __m256d reciprocal = _mm256_div_pd(_mm256_set1_pd(1.0 + 0x1p-52), area);
  return _mm256_castpd_si256(_mm256_fmadd_pd(sum, reciprocal, _mm256_set1_pd(0x1p52)));
}

// lanes * weight, for column sums of either depth.
inline __m256i weighted(__m256i lanes, __m256i weight, Pixels8) {
  return _mm256_mul_epu32(lanes, weight);
}
inline __m256i weighted(__m256i lanes, __m256i weight, Pixels16) {
  return _mm256_madd52lo_epu64(_mm256_setzero_si256(), lanes, weight);  // a sum has up to 33 bits
}
inline __m512i weighted(__m512i lanes, __m512i weights, Pixels8) {
  return _mm512_mul_epu32(lanes, weights);
}
inline __m512i weighted(__m512i lanes, __m512i weights, Pixels16) {
  return _mm512_madd52lo_epu64(_mm512_setzero_si512(), lanes, weights);
}

// y in the first 64-bit lane and x in the second.
inline __m128i bothAxes(std::int32_t x, std::int32_t y) {
  return _mm_unpacklo_epi64(_mm_cvtsi32_si128(y), _mm_cvtsi32_si128(x));
}

// Where a box begins and ends, relative to its first pixel, and its length: for the rows in the first 64-bit lane and
// for the columns in the second.
struct BoxExtent {
  __m128i begin;
  __m128i end;
  __m128i length;
};

inline BoxExtent extentOf(std::int32_t x, std::int32_t y, const PF_SampleParams& params) {
  const __m128i radius = _mm_shuffle_epi32(_mm_cvtepu32_epi64(loadBytes8(&params.x_radius)), 0x4E);
  const __m128i length = _mm_add_epi64(radius, radius);
  const __m128i from_centre = _mm_sub_epi32(bothAxes(x, y), radius);
  const __m128i begin = _mm_and_si128(_mm_add_epi32(from_centre, constant128(kVectorConstants.half)),
                                      constant128(kVectorConstants.fraction));
  return {begin, _mm_add_epi64(begin, length), length};
}

// The weights of two columns, for a vector with the column sums of two pixels.
inline __m512i columnWeights(__m128i left, __m128i right) {
  return _mm512_permutex2var_epi64(_mm512_castsi128_si512(left), constant512(kVectorConstants.pair_lanes),
                                   _mm512_castsi128_si512(right));
}

template <typename Pixel>
inline void storeMean(__m256i total, __m128i length, Pixel* out) {
  const __m128d lengths = _mm_cvtepi64_pd(length);
  const __m256d area =
      _mm256_mul_pd(_mm256_broadcastsd_pd(lengths), _mm256_permute4x64_pd(_mm256_castpd128_pd256(lengths), 0x55));
  storeLow(roundedQuotientBits(_mm256_cvtepu64_pd(total), area), out);
}

// The mean of a box within the three by three pixels at `pixel`.
template <typename Pixels>
inline void meanOfThreeByThree(const std::byte* pixel, std::ptrdiff_t row_bytes, std::int32_t x, std::int32_t y,
                               const PF_SampleParams& params, typename Pixels::Pixel* out) {
  const BoxExtent box = extentOf(x, y, params);
  const __m128i one = constant128(kVectorConstants.one);
  const __m128i two = constant128(kVectorConstants.two);
  const __m128i first = _mm_sub_epi64(one, box.begin);
  const __m128i second = _mm_sub_epi64(_mm_min_epu32(box.end, two), one);
  const __m128i third = _mm_sub_epi64(_mm_max_epu32(box.end, two), two);

  // Weighted sums over the rows, of the first two columns and of the third.
  const std::byte* const lower = pixel + row_bytes;
  const std::byte* const lowest = lower + row_bytes;
  const __m512i rows[3] = {_mm512_broadcastq_epi64(first), _mm512_broadcastq_epi64(second),
                           _mm512_broadcastq_epi64(third)};
  const auto row_of_third = [&](int i) { return _mm512_castsi512_si256(rows[i]); };
  const __m512i upper_pairs = _mm512_madd52lo_epu64(_mm512_mul_epu32(widenPair64(pixel, Pixels{}), rows[0]),
                                                    widenPair64(lower, Pixels{}), rows[1]);
  const __m512i pairs = _mm512_add_epi64(upper_pairs, _mm512_mul_epu32(widenPair64(lowest, Pixels{}), rows[2]));
  constexpr std::ptrdiff_t kTwoPixels = 2 * Pixels::kPixelBytes;
  const __m256i upper_thirds =
      _mm256_madd52lo_epu64(_mm256_mul_epu32(widenOne64(pixel + kTwoPixels, Pixels{}), row_of_third(0)),
                            widenOne64(lower + kTwoPixels, Pixels{}), row_of_third(1));
  const __m256i thirds =
      _mm256_add_epi64(upper_thirds, _mm256_mul_epu32(widenOne64(lowest + kTwoPixels, Pixels{}), row_of_third(2)));

  const __m512i columns = columnWeights(first, second);
  const __m256i third_column = _mm256_permute4x64_epi64(_mm256_castsi128_si256(third), 0x55);
  const __m256i total =
      _mm256_add_epi64(sumOfHalves(weighted(pairs, columns, Pixels{})), weighted(thirds, third_column, Pixels{}));
  storeMean(total, box.length, out);
}

// The mean of a box within the four by four pixels at `pixel`.
template <typename Pixels>
inline void meanOfFourByFour(const std::byte* pixel, std::ptrdiff_t row_bytes, std::int32_t x, std::int32_t y,
                             const PF_SampleParams& params, typename Pixels::Pixel* out) {
  const BoxExtent box = extentOf(x, y, params);
  const __m128i one = constant128(kVectorConstants.one);
  const __m128i two = constant128(kVectorConstants.two);
  const __m128i three = constant128(kVectorConstants.three);
  const __m128i to_three = _mm_min_epu32(box.end, three);
  const __m128i weights[4] = {_mm_sub_epi64(one, box.begin), _mm_sub_epi64(_mm_min_epu32(box.end, two), one),
                              _mm_sub_epi64(_mm_max_epu32(to_three, two), two), _mm_sub_epi64(box.end, to_three)};

  // Weighted sums over the rows, of the first two columns and of the last two.
  constexpr std::ptrdiff_t kTwoPixels = 2 * Pixels::kPixelBytes;
  __m512i left = _mm512_setzero_si512();
  __m512i right = _mm512_setzero_si512();
  for (int row = 0; row < 4; ++row, pixel += row_bytes) {
    const __m512i weight = _mm512_broadcastq_epi64(weights[row]);
    left = _mm512_madd52lo_epu64(left, widenPair64(pixel, Pixels{}), weight);
    right = _mm512_madd52lo_epu64(right, widenPair64(pixel + kTwoPixels, Pixels{}), weight);
  }

  const __m512i sums = _mm512_add_epi64(weighted(left, columnWeights(weights[0], weights[1]), Pixels{}),
                                        weighted(right, columnWeights(weights[2], weights[3]), Pixels{}));
  storeMean(sumOfHalves(sums), box.length, out);
}

}  // namespace

}  // namespace vantorel::host

#include "host/sampling/AreaSamplerVector.inl"

namespace vantorel::host {

const AreaSamplerTables kAvx512AreaSamplers = kSamplerTables;

}  // namespace vantorel::host
