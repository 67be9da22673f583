// The area samplers with AVX2 and FMA; called only if the processor has them. This file has the small boxes of 8 and
// 16-bit pixels, which nearly all samples use: without loops or branches, summed in doubles, four channels at once.
#include "host/sampling/SimdPixels.inl"

namespace vantorel::host {

namespace {

// The mean of the two by two pixels at `pixel`, where the second column has the weight `x` and the second row the
// weight `y`. The columns are summed in integers of up to 32 bits, and these sums in doubles, in which every step is
// exact.
template <typename Pixels>
inline void meanOfTwoByTwo(const std::byte* pixel, std::ptrdiff_t row_bytes, std::int32_t x, std::int32_t y,
                           typename Pixels::Pixel* out) {
  const __m256i upper = Pixels::widenPair(pixel);
  const __m256i lower = Pixels::widenPair(pixel + row_bytes);
  const __m256i rise = _mm256_mullo_epi32(_mm256_sub_epi32(lower, upper), _mm256_set1_epi32(y));
  const __m256i columns =
      _mm256_xor_si256(_mm256_add_epi32(_mm256_slli_epi32(upper, 16), rise), _mm256_set1_epi32(Pixels::kSignFlip));
  const __m256d left = _mm256_cvtepi32_pd(_mm256_castsi256_si128(columns));
  const __m256d right = _mm256_cvtepi32_pd(_mm256_extracti128_si256(columns, 1));
  const __m256d right_weight = _mm256_mul_pd(_mm256_cvtepi32_pd(_mm_set1_epi32(x)), _mm256_set1_pd(0x1p-32));
  const __m256d left_weight = _mm256_sub_pd(_mm256_set1_pd(0x1p-16), right_weight);
  const __m256d rounding = _mm256_set1_pd(Pixels::kSignedZero + 0.5);
  const __m256d mean = _mm256_fmadd_pd(right, right_weight, _mm256_fmadd_pd(left, left_weight, rounding));
  Pixels::storeLanes(_mm256_cvttpd_epi32(mean), out);
}

// sum / area rounded to nearest, halves up, for sums of weighted 8 or 16-bit channels and areas of boxes of up to three
// pixels a side. Both are whole numbers; areas are multiples of 4 up to 9 * 2^32. Multiplying by the area's reciprocal
// is faster, since that need not wait for the sum. After adding 1/2, the exact quotient is either a whole number or at
// least 8/9 of 2^-35 below the next one. The computed quotient is off by at most 3/8 of 2^-35 (2^-37 from the
// reciprocal and 2^-38 from the sum), so adding another 4/8 of 2^-35 makes truncation exact.
inline __m128i roundedQuotient(__m256d sum, __m256d area) {
  const __m256d reciprocal = _mm256_div_pd(_mm256_set1_pd(1.0), area);
  return _mm256_cvttpd_epi32(_mm256_fmadd_pd(sum, reciprocal, _mm256_set1_pd(0.5 + 0x1p-36)));
}

// The mean of a box within the kSide by kSide pixels at `pixel`, summed in doubles, which is exact.
template <int kSide, typename Pixels>
inline void meanOfSquare(const std::byte* pixel, std::ptrdiff_t row_bytes, std::int32_t x_centre, std::int32_t y_centre,
                         const PF_SampleParams& params, typename Pixels::Pixel* out) {
  const auto weights = boxWeights<kSide>(smallBox(x_centre, y_centre, params));
  __m256d x[std::size_t{kSide}];
  for (int i = 0; i < kSide; ++i) {
    x[i] = broadcastX(weights.weight[i]);
  }
  __m256d total = _mm256_setzero_pd();
  for (int row = 0; row < kSide; ++row, pixel += row_bytes) {
    __m256d sum = _mm256_mul_pd(x[0], Pixels::widen(pixel));
    for (int i = 1; i < kSide; ++i) {
      sum = _mm256_fmadd_pd(x[i], Pixels::widen(pixel + i * Pixels::kPixelBytes), sum);
    }
    const __m256d y = broadcastY(weights.weight[row]);
    total = _mm256_fmadd_pd(y, sum, total);
  }
  Pixels::storeLanes(roundedQuotient(total, areaOf(weights)), out);
}

template <typename Pixels>
inline void meanOfThreeByThree(const std::byte* pixel, std::ptrdiff_t row_bytes, std::int32_t x, std::int32_t y,
                               const PF_SampleParams& params, typename Pixels::Pixel* out) {
  meanOfSquare<3, Pixels>(pixel, row_bytes, x, y, params, out);
}

template <typename Pixels>
inline void meanOfFourByFour(const std::byte* pixel, std::ptrdiff_t row_bytes, std::int32_t x, std::int32_t y,
                             const PF_SampleParams& params, typename Pixels::Pixel* out) {
  meanOfSquare<4, Pixels>(pixel, row_bytes, x, y, params, out);
}

}  // namespace

}  // namespace vantorel::host

#include "host/sampling/AreaSamplerVector.inl"

namespace vantorel::host {

const AreaSamplerTables kAvx2AreaSamplers = kSamplerTables;

}  // namespace vantorel::host
