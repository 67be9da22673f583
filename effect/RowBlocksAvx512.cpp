// The block computations with AVX-512 (F, DQ, VL) and FMA; called only where the machine has them.
#include <immintrin.h>

#include "effect/RowBlocks.h"

namespace {

constexpr int kVectorLanes = 8;
using DoubleVector = __m512d;
using IntVector = __m256i;

inline DoubleVector BroadcastVector(double value) {
  return _mm512_set1_pd(value);
}
inline DoubleVector LoadVector(const double* from) {
  return _mm512_loadu_pd(from);
}
inline DoubleVector RampVector() {
  return _mm512_set_pd(8, 7, 6, 5, 4, 3, 2, 1);
}
inline DoubleVector MultiplyAdd(DoubleVector a, DoubleVector b, DoubleVector c) {
  return _mm512_fmadd_pd(a, b, c);
}
// a - b * c
inline DoubleVector SubtractProduct(DoubleVector a, DoubleVector b, DoubleVector c) {
  return _mm512_fnmadd_pd(b, c, a);
}
inline double Lowest(DoubleVector a) {
  return _mm512_cvtsd_f64(a);
}
inline DoubleVector Magnitude(DoubleVector a) {
  return _mm512_abs_pd(a);
}
// a < b ? b : a, also for NaN.
inline DoubleVector Larger(DoubleVector a, DoubleVector b) {
  return _mm512_max_pd(b, a);
}
// The one of smaller or larger magnitude, as a magnitude.
inline DoubleVector SmallerMagnitude(DoubleVector a, DoubleVector b) {
  return _mm512_range_pd(a, b, 0b1010);
}
inline DoubleVector LargerMagnitude(DoubleVector a, DoubleVector b) {
  return _mm512_range_pd(a, b, 0b1011);
}
// `magnitude`, which is not negative, with the sign of `signs`.
inline DoubleVector WithSignOf(DoubleVector magnitude, DoubleVector signs) {
  return _mm512_or_pd(magnitude, _mm512_and_pd(signs, _mm512_set1_pd(-0.0)));
}
// The signed distance to the nearest whole number.
inline DoubleVector ToWhole(DoubleVector a) {
  return _mm512_reduce_pd(a, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC);
}
inline bool AllGreater(DoubleVector a, DoubleVector b) {
  return _mm512_cmp_pd_mask(a, b, _CMP_GT_OQ) == 0xFF;
}

// Toward zero; NaN and what an int does not hold give -2147483648.
inline IntVector Truncated(DoubleVector a) {
  return _mm512_cvttpd_epi32(a);
}
inline DoubleVector FromInts(IntVector a) {
  return _mm512_cvtepi32_pd(a);
}
inline IntVector HalfClamped(IntVector a, int least, int most) {
  return _mm256_srai_epi32(_mm256_min_epi32(_mm256_max_epi32(a, _mm256_set1_epi32(least)), _mm256_set1_epi32(most)), 1);
}
inline IntVector TimesFour(IntVector a) {
  return _mm256_slli_epi32(a, 2);
}
inline void Store(IntVector a, std::int32_t* out) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), a);
}
inline void StoreBoxes(IntVector x_radius, IntVector y_radius, IntVector area, SampleBoxSize* out) {
  const IntVector radii_low = _mm256_unpacklo_epi32(x_radius, y_radius);
  const IntVector radii_high = _mm256_unpackhi_epi32(x_radius, y_radius);
  const IntVector area_low = _mm256_unpacklo_epi32(area, _mm256_setzero_si256());
  const IntVector area_high = _mm256_unpackhi_epi32(area, _mm256_setzero_si256());
  const IntVector boxes[4] = {_mm256_unpacklo_epi64(radii_low, area_low), _mm256_unpackhi_epi64(radii_low, area_low),
                              _mm256_unpacklo_epi64(radii_high, area_high),
                              _mm256_unpackhi_epi64(radii_high, area_high)};
  __m128i* const to = reinterpret_cast<__m128i*>(out);
  for (int i = 0; i < 4; ++i) {
    _mm_storeu_si128(to + i, _mm256_castsi256_si128(boxes[i]));
    _mm_storeu_si128(to + i + 4, _mm256_extracti128_si256(boxes[i], 1));
  }
}

}  // namespace

#include "effect/RowBlockLanes.inl"

const RowBlockFunctions kRowBlocksAvx512 = kFunctions;
