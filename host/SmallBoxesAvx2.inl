// The smallest boxes of the AVX2 area samplers, which most pixels need: without a loop and, but for their place,
// without a branch. Included by AreaSamplerAvx2.cpp alone.
#include "host/VectorDepths.inl"

namespace vantorel::host {

namespace {

// The mean of the two by two pixels at `pixel`, of which the second column and row weigh `x` and `y`. The columns are
// summed in integers, and those sums, of up to 32 bits, in doubles, which hold every step exactly.
template <typename Depth>
inline void sampleSquare(const std::byte* pixel, std::ptrdiff_t row_bytes, std::int32_t x, std::int32_t y,
                         typename Depth::Pixel* out) {
  const __m256i upper = Depth::widenPair(pixel);
  const __m256i lower = Depth::widenPair(pixel + row_bytes);
  const __m256i rise = _mm256_mullo_epi32(_mm256_sub_epi32(lower, upper), _mm256_set1_epi32(y));
  const __m256i columns =
      _mm256_xor_si256(_mm256_add_epi32(_mm256_slli_epi32(upper, 16), rise), _mm256_set1_epi32(Depth::kSignFlip));
  const __m256d left = _mm256_cvtepi32_pd(_mm256_castsi256_si128(columns));
  const __m256d right = _mm256_cvtepi32_pd(_mm256_extracti128_si256(columns, 1));
  const __m256d right_weight = _mm256_mul_pd(_mm256_cvtepi32_pd(_mm_set1_epi32(x)), _mm256_set1_pd(0x1p-32));
  const __m256d left_weight = _mm256_sub_pd(_mm256_set1_pd(0x1p-16), right_weight);
  const __m256d rounding = _mm256_set1_pd(Depth::kSignedZero + 0.5);
  const __m256d mean = _mm256_fmadd_pd(right, right_weight, _mm256_fmadd_pd(left, left_weight, rounding));
  Depth::storeLanes(_mm256_cvttpd_epi32(mean), out);
}

// `values` where the weight is not 0, else 0: a float that the box does not meet may be infinite or NaN.
inline __m256d present(__m256d values, __m256d weight) {
  return _mm256_and_pd(values, _mm256_cmp_pd(weight, _mm256_setzero_pd(), _CMP_NEQ_OQ));
}

template <>
inline void sampleSquare<DepthFloat>(const std::byte* pixel, std::ptrdiff_t row_bytes, std::int32_t x, std::int32_t y,
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
  // Sums begin at 0, which -0 shows.
  const __m256d total = _mm256_add_pd(_mm256_add_pd(_mm256_setzero_pd(), weighted_upper), weighted_lower);
  DepthFloat::store(_mm256_mul_pd(total, _mm256_set1_pd(0x1p-32)), out);
}

// A box of one to two pixels' size meets three columns and three rows at most, whose weights these are, x in the low
// lane and y in the high one; an absent pixel's is 0.
struct ThreeWeights {
  __m128d length;
  __m128d weight[3];
};

inline ThreeWeights threeWeights(const SmallBox& box) {
  const __m128i begin = _mm_unpacklo_epi32(_mm_cvtsi32_si128(box.left), _mm_cvtsi32_si128(box.top));
  const __m128i length = _mm_unpacklo_epi32(_mm_cvtsi32_si128(box.width), _mm_cvtsi32_si128(box.height));
  const __m128d one = _mm_set1_pd(65536.0);
  ThreeWeights weights;
  weights.length = _mm_cvtepi32_pd(length);
  weights.weight[0] = _mm_sub_pd(one, _mm_cvtepi32_pd(begin));
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

// The mean of a box that lies within the three by three pixels at `pixel`.
template <typename Depth>
inline void sampleThreeByThree(const std::byte* pixel, std::ptrdiff_t row_bytes, const SmallBox& box,
                               typename Depth::Pixel* out) {
  constexpr bool kIsFloat = !Depth::kOnePixelIsMean;
  const auto met = [](__m256d values, __m256d weight) { return kIsFloat ? present(values, weight) : values; };
  const ThreeWeights weights = threeWeights(box);
  const __m256d x[3] = {broadcastX(weights.weight[0]), broadcastX(weights.weight[1]), broadcastX(weights.weight[2])};
  __m256d total = _mm256_setzero_pd();
  for (int row = 0; row < 3; ++row, pixel += row_bytes) {
    __m256d sum = _mm256_mul_pd(x[0], Depth::widen(pixel));
    for (int column = 1; column < 3; ++column) {
      sum = _mm256_fmadd_pd(x[column], met(Depth::widen(pixel + column * Depth::kPixelBytes), x[column]), sum);
    }
    const __m256d y = broadcastY(weights.weight[row]);
    total = _mm256_add_pd(total, _mm256_mul_pd(y, row == 0 ? sum : met(sum, y)));
  }
  Depth::storeQuotient(total, _mm256_mul_pd(broadcastX(weights.length), broadcastY(weights.length)), out);
}

}  // namespace

}  // namespace vantorel::host
