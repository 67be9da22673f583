// The small boxes of float pixels, which most pixels need: without a loop or a branch. Sums are rounded in the order
// that AreaSampler.h tells. Included by the other depths' small boxes.
#include "host/sampling/VectorDepths.inl"

namespace vantorel::host {

namespace {

// `values` where the weight is not 0, else 0: a float that the box does not meet may be infinite or NaN.
inline __m256d present(__m256d values, __m256d weight) {
  return _mm256_and_pd(values, _mm256_cmp_pd(weight, _mm256_setzero_pd(), _CMP_NEQ_OQ));
}

// The mean of the two by two pixels at `pixel`, of which the second column and row weigh `x` and `y`.
inline void sampleFloatSquare(const std::byte* pixel, std::ptrdiff_t row_bytes, std::int32_t x, std::int32_t y,
                              PF_PixelFloat* out) {
  const __m256d one = _mm256_set1_pd(65536.0);
  const __m256d right = _mm256_cvtepi32_pd(_mm_set1_epi32(x));
  const __m256d left = _mm256_sub_pd(one, right);
  const __m256d below = _mm256_cvtepi32_pd(_mm_set1_epi32(y));
  const std::byte* const next_row = pixel + row_bytes;
  const __m256d upper = _mm256_fmadd_pd(right, present(DepthFloat::widen(pixel + 16), right),
                                        _mm256_mul_pd(left, DepthFloat::widen(pixel)));
  const __m256d lower = _mm256_fmadd_pd(right, present(DepthFloat::widen(next_row + 16), right),
                                        _mm256_mul_pd(left, DepthFloat::widen(next_row)));
  const __m256d weighted_upper = _mm256_mul_pd(_mm256_sub_pd(one, below), upper);
  const __m256d weighted_lower = _mm256_mul_pd(below, present(lower, below));
  // Sums begin at 0, so that -0 does not come out.
  const __m256d total = _mm256_add_pd(weighted_upper, weighted_lower);
  DepthFloat::store(_mm256_fmadd_pd(total, _mm256_set1_pd(0x1p-32), _mm256_setzero_pd()), out);
}

// A box of one to two pixels' size meets three columns and three rows at most, whose weights these are, x in the low
// lane and y in the high one; that of a pixel that it does not meet is 0.
struct ThreeWeights {
  __m128d length;
  __m128d weight[3];
};

inline ThreeWeights threeWeights(const SmallBox& box) {
  const __m128d one = _mm_set1_pd(65536.0);
  ThreeWeights weights;
  weights.length = _mm_cvtepi32_pd(box.length);
  weights.weight[0] = _mm_sub_pd(one, _mm_cvtepi32_pd(box.begin));
  const __m128d rest = _mm_sub_pd(weights.length, weights.weight[0]);
  weights.weight[1] = _mm_min_pd(rest, one);
  weights.weight[2] = _mm_sub_pd(rest, weights.weight[1]);
  return weights;
}

inline __m256d broadcastX(__m128d both) {
  return _mm256_broadcastsd_pd(both);
}
inline __m256d broadcastY(__m128d both) {
  return _mm256_permute4x64_pd(_mm256_castpd128_pd256(both), 0x55);
}

inline __m256d areaOf(const ThreeWeights& weights) {
  return _mm256_mul_pd(broadcastX(weights.length), broadcastY(weights.length));
}

// The mean of a box that lies within the three by three pixels at `pixel`.
inline void sampleFloatThreeByThree(const std::byte* pixel, std::ptrdiff_t row_bytes, const SmallBox& box,
                                    PF_PixelFloat* out) {
  const ThreeWeights weights = threeWeights(box);
  const __m256d x[3] = {broadcastX(weights.weight[0]), broadcastX(weights.weight[1]), broadcastX(weights.weight[2])};
  __m256d total = _mm256_setzero_pd();
  for (int row = 0; row < 3; ++row, pixel += row_bytes) {
    __m256d sum = _mm256_mul_pd(x[0], DepthFloat::widen(pixel));
    sum = _mm256_fmadd_pd(x[1], present(DepthFloat::widen(pixel + 16), x[1]), sum);
    sum = _mm256_fmadd_pd(x[2], present(DepthFloat::widen(pixel + 32), x[2]), sum);
    const __m256d y = broadcastY(weights.weight[row]);
    total = _mm256_add_pd(total, _mm256_mul_pd(y, row == 0 ? sum : present(sum, y)));
  }
  const __m256d reciprocal = _mm256_div_pd(_mm256_set1_pd(1.0), areaOf(weights));
  DepthFloat::store(_mm256_fmadd_pd(total, reciprocal, _mm256_setzero_pd()), out);
}

}  // namespace

}  // namespace vantorel::host
