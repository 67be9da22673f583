// The small boxes of float pixels, which nearly all samples use: without loops or branches. Sums are rounded in the
// order defined in AreaSampler.h. Included only by AreaSamplerVector.inl.

namespace vantorel::host {

namespace {

// `values` if the weight is not 0, else 0: a pixel that the box does not overlap may be infinite or NaN.
inline __m256d present(__m256d values, __m256d weight) {
  return _mm256_and_pd(values, _mm256_cmp_pd(weight, _mm256_setzero_pd(), _CMP_NEQ_OQ));
}

// The mean of the two by two pixels at `pixel`, where the second column has the weight `x` and the second row the
// weight `y`.
template <>
inline void meanOfTwoByTwo<PixelsFloat>(const std::byte* pixel, std::ptrdiff_t row_bytes, std::int32_t x,
                                        std::int32_t y, PF_PixelFloat* out) {
  const __m256d one = _mm256_set1_pd(kFixedOne);
  const __m256d right = _mm256_cvtepi32_pd(_mm_set1_epi32(x));
  const __m256d left = _mm256_sub_pd(one, right);
  const __m256d below = _mm256_cvtepi32_pd(_mm_set1_epi32(y));
  const std::byte* const next_row = pixel + row_bytes;
  const __m256d upper = _mm256_fmadd_pd(right, present(PixelsFloat::widen(pixel + 16), right),
                                        _mm256_mul_pd(left, PixelsFloat::widen(pixel)));
  const __m256d lower = _mm256_fmadd_pd(right, present(PixelsFloat::widen(next_row + 16), right),
                                        _mm256_mul_pd(left, PixelsFloat::widen(next_row)));
  const __m256d weighted_upper = _mm256_mul_pd(_mm256_sub_pd(one, below), upper);
  const __m256d weighted_lower = _mm256_mul_pd(below, present(lower, below));
  // Sums start at 0, so the result is never -0.
  const __m256d total = _mm256_add_pd(weighted_upper, weighted_lower);
  PixelsFloat::store(_mm256_fmadd_pd(total, _mm256_set1_pd(0x1p-32), _mm256_setzero_pd()), out);
}

// The mean of a box within the kSide by kSide pixels at `pixel`.
template <int kSide>
inline void meanOfFloats(const std::byte* pixel, std::ptrdiff_t row_bytes, std::int32_t x_centre, std::int32_t y_centre,
                         const PF_SampleParams& params, PF_PixelFloat* out) {
  const auto weights = boxWeights<kSide>(smallBox(x_centre, y_centre, params));
  __m256d x[std::size_t{kSide}];
  for (int i = 0; i < kSide; ++i) {
    x[i] = broadcastX(weights.weight[i]);
  }
  __m256d total = _mm256_setzero_pd();
  for (int row = 0; row < kSide; ++row, pixel += row_bytes) {
    __m256d sum = _mm256_mul_pd(x[0], PixelsFloat::widen(pixel));
    for (int i = 1; i < kSide; ++i) {
      sum = _mm256_fmadd_pd(x[i], present(PixelsFloat::widen(pixel + i * PixelsFloat::kPixelBytes), x[i]), sum);
    }
    const __m256d y = broadcastY(weights.weight[row]);
    total = _mm256_add_pd(total, _mm256_mul_pd(y, row == 0 ? sum : present(sum, y)));
  }
  const __m256d reciprocal = _mm256_div_pd(_mm256_set1_pd(1.0), areaOf(weights));
  PixelsFloat::store(_mm256_fmadd_pd(total, reciprocal, _mm256_setzero_pd()), out);
}

template <>
inline void meanOfThreeByThree<PixelsFloat>(const std::byte* pixel, std::ptrdiff_t row_bytes, std::int32_t x,
                                            std::int32_t y, const PF_SampleParams& params, PF_PixelFloat* out) {
  meanOfFloats<3>(pixel, row_bytes, x, y, params, out);
}

template <>
inline void meanOfFourByFour<PixelsFloat>(const std::byte* pixel, std::ptrdiff_t row_bytes, std::int32_t x,
                                          std::int32_t y, const PF_SampleParams& params, PF_PixelFloat* out) {
  meanOfFloats<4>(pixel, row_bytes, x, y, params, out);
}

}  // namespace

}  // namespace vantorel::host
