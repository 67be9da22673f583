// The block computations with AVX2 and FMA; called only where the machine has them.
#include <immintrin.h>

#include "effect/RowBlocks.h"

namespace {

constexpr int kVectorLanes = 4;
using DoubleVector = __m256d;
using IntVector = __m128i;

inline DoubleVector BroadcastVector(double value) {
  return _mm256_set1_pd(value);
}
inline DoubleVector LoadVector(const double* from) {
  return _mm256_loadu_pd(from);
}
inline DoubleVector RampVector() {
  return _mm256_set_pd(4, 3, 2, 1);
}
inline DoubleVector MultiplyAdd(DoubleVector a, DoubleVector b, DoubleVector c) {
  return _mm256_fmadd_pd(a, b, c);
}
// a - b * c
inline DoubleVector SubtractProduct(DoubleVector a, DoubleVector b, DoubleVector c) {
  return _mm256_fnmadd_pd(b, c, a);
}
inline double Lowest(DoubleVector a) {
  return _mm256_cvtsd_f64(a);
}
inline DoubleVector Magnitude(DoubleVector a) {
  return _mm256_andnot_pd(_mm256_set1_pd(-0.0), a);
}
// a < b ? b : a, also for NaN.
inline DoubleVector Larger(DoubleVector a, DoubleVector b) {
  return _mm256_max_pd(b, a);
}
// The one of smaller or larger magnitude, as a magnitude.
inline DoubleVector SmallerMagnitude(DoubleVector a, DoubleVector b) {
  return _mm256_min_pd(Magnitude(a), Magnitude(b));
}
inline DoubleVector LargerMagnitude(DoubleVector a, DoubleVector b) {
  return _mm256_max_pd(Magnitude(a), Magnitude(b));
}
// `magnitude`, which is not negative, with the sign of `signs`.
inline DoubleVector WithSignOf(DoubleVector magnitude, DoubleVector signs) {
  return _mm256_or_pd(magnitude, _mm256_and_pd(signs, _mm256_set1_pd(-0.0)));
}
// The signed distance to the nearest whole number.
inline DoubleVector ToWhole(DoubleVector a) {
  return a - _mm256_round_pd(a, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC);
}
inline bool AllGreater(DoubleVector a, DoubleVector b) {
  return _mm256_movemask_pd(_mm256_cmp_pd(a, b, _CMP_GT_OQ)) == 0xF;
}

// Toward zero; NaN and what an int does not hold give -2147483648.
inline IntVector Truncated(DoubleVector a) {
  return _mm256_cvttpd_epi32(a);
}
inline DoubleVector FromInts(IntVector a) {
  return _mm256_cvtepi32_pd(a);
}
inline IntVector HalfClamped(IntVector a, int least, int most) {
  return _mm_srai_epi32(_mm_min_epi32(_mm_max_epi32(a, _mm_set1_epi32(least)), _mm_set1_epi32(most)), 1);
}
inline IntVector TimesFour(IntVector a) {
  return _mm_slli_epi32(a, 2);
}
inline void Store(IntVector a, std::int32_t* out) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), a);
}
inline void StoreBoxes(IntVector x_radius, IntVector y_radius, IntVector area, SampleBoxSize* out) {
  const IntVector radii_low = _mm_unpacklo_epi32(x_radius, y_radius);
  const IntVector radii_high = _mm_unpackhi_epi32(x_radius, y_radius);
  const IntVector area_low = _mm_unpacklo_epi32(area, _mm_setzero_si128());
  const IntVector area_high = _mm_unpackhi_epi32(area, _mm_setzero_si128());
  __m128i* const to = reinterpret_cast<__m128i*>(out);
  _mm_storeu_si128(to, _mm_unpacklo_epi64(radii_low, area_low));
  _mm_storeu_si128(to + 1, _mm_unpackhi_epi64(radii_low, area_low));
  _mm_storeu_si128(to + 2, _mm_unpacklo_epi64(radii_high, area_high));
  _mm_storeu_si128(to + 3, _mm_unpackhi_epi64(radii_high, area_high));
}

}  // namespace

#include "effect/RowBlockLanes.inl"

const RowBlockFunctions kRowBlocksAvx2 = kFunctions;
