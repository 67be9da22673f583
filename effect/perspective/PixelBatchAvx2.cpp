// The block computations with AVX2 and FMA; called only where the machine has them.
#include <immintrin.h>

#include "effect/perspective/PixelBatch.h"

namespace {

constexpr int kLanes = 4;
using Doubles = __m256d;
using Ints = __m128i;

inline Doubles broadcast(double value) {
  return _mm256_set1_pd(value);
}
inline Doubles load(const double* from) {
  return _mm256_loadu_pd(from);
}
inline void store(Doubles a, double* out) {
  _mm256_storeu_pd(out, a);
}
// 1, 2, 3 and so on.
inline Doubles ramp() {
  return _mm256_set_pd(4, 3, 2, 1);
}
inline Doubles multiplyAdd(Doubles a, Doubles b, Doubles c) {
  return _mm256_fmadd_pd(a, b, c);
}
inline Doubles multiplySubtract(Doubles a, Doubles b, Doubles c) {
  return _mm256_fmsub_pd(a, b, c);
}
inline Doubles magnitude(Doubles a) {
  return _mm256_andnot_pd(_mm256_set1_pd(-0.0), a);
}
// a < b ? b : a, also for NaN.
inline Doubles larger(Doubles a, Doubles b) {
  return _mm256_max_pd(b, a);
}
// The larger magnitude.
inline Doubles largerMagnitude(Doubles a, Doubles b) {
  return _mm256_max_pd(magnitude(a), magnitude(b));
}
// `magnitude`, which is not negative, with the sign of `signs`.
inline Doubles withSignOf(Doubles magnitude, Doubles signs) {
  return _mm256_or_pd(magnitude, _mm256_and_pd(signs, _mm256_set1_pd(-0.0)));
}
inline bool allGreater(Doubles a, Doubles b) {
  return _mm256_movemask_pd(_mm256_cmp_pd(a, b, _CMP_GT_OQ)) == 0xF;
}

inline Ints load(const std::int32_t* from) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}
// Toward zero; NaN and what an int does not hold give -2147483648.
inline Ints truncated(Doubles a) {
  return _mm256_cvttpd_epi32(a);
}
// Added to a number of up to 2^31, this rounds it to a whole one, which the low bits of the sum then hold.
constexpr double kRoundingShift = 0x1.8p52;
inline Ints intsOfShifted(Doubles a) {
  return _mm256_cvtpd_epi32(a - broadcast(kRoundingShift));
}
inline Doubles fromInts(Ints a) {
  return _mm256_cvtepi32_pd(a);
}
inline Ints halfClamped(Ints a, int least, int most) {
  return _mm_srai_epi32(_mm_min_epi32(_mm_max_epi32(a, _mm_set1_epi32(least)), _mm_set1_epi32(most)), 1);
}
inline void store(Ints a, std::int32_t* out) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), a);
}
// The areas of boxes whose radii stand side by side in lanes of 64 bits.
inline Ints areas(Ints radii) {
  const Ints products = _mm_mul_epu32(radii, _mm_srli_epi64(radii, 32));
  return _mm_slli_epi64(_mm_srli_epi64(products, 16), 2);
}
inline void storeBoxes(Ints x_radius, Ints y_radius, SampleBoxSize* out) {
  const Ints radii_low = _mm_unpacklo_epi32(x_radius, y_radius);
  const Ints radii_high = _mm_unpackhi_epi32(x_radius, y_radius);
  const Ints area_low = areas(radii_low);
  const Ints area_high = areas(radii_high);
  __m128i* const to = reinterpret_cast<__m128i*>(out);
  _mm_storeu_si128(to, _mm_unpacklo_epi64(radii_low, area_low));
  _mm_storeu_si128(to + 1, _mm_unpackhi_epi64(radii_low, area_low));
  _mm_storeu_si128(to + 2, _mm_unpacklo_epi64(radii_high, area_high));
  _mm_storeu_si128(to + 3, _mm_unpackhi_epi64(radii_high, area_high));
}

}  // namespace

#include "effect/perspective/PixelBatchVector.inl"

const RowBlockFunctions kRowBlocksAvx2 = kFunctions;
