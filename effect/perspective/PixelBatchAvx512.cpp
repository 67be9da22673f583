// The block computations with AVX-512 (F, DQ, VL) and FMA; called only where the machine has them.
#include <immintrin.h>

#include "effect/perspective/PixelBatch.h"

namespace {

constexpr int kLanes = 8;
using Doubles = __m512d;
using Ints = __m256i;

inline Doubles broadcast(double value) {
  return _mm512_set1_pd(value);
}
inline Doubles load(const double* from) {
  return _mm512_loadu_pd(from);
}
inline void store(Doubles a, double* out) {
  _mm512_storeu_pd(out, a);
}
// 1, 2, 3 and so on.
inline Doubles ramp() {
  return _mm512_set_pd(8, 7, 6, 5, 4, 3, 2, 1);
}
inline Doubles multiplyAdd(Doubles a, Doubles b, Doubles c) {
  return _mm512_fmadd_pd(a, b, c);
}
inline Doubles multiplySubtract(Doubles a, Doubles b, Doubles c) {
  return _mm512_fmsub_pd(a, b, c);
}
inline Doubles magnitude(Doubles a) {
  return _mm512_abs_pd(a);
}
// a < b ? b : a, also for NaN.
inline Doubles larger(Doubles a, Doubles b) {
  return _mm512_max_pd(b, a);
}
// The larger magnitude.
inline Doubles largerMagnitude(Doubles a, Doubles b) {
  return _mm512_range_pd(a, b, 0b1011);
}
// `magnitude`, which is not negative, with the sign of `signs`.
inline Doubles withSignOf(Doubles magnitude, Doubles signs) {
  return _mm512_or_pd(magnitude, _mm512_and_pd(signs, _mm512_set1_pd(-0.0)));
}
inline bool allGreater(Doubles a, Doubles b) {
  return _mm512_cmp_pd_mask(a, b, _CMP_GT_OQ) == 0xFF;
}

inline Ints load(const std::int32_t* from) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
}
// Toward zero; NaN and what an int does not hold give -2147483648.
inline Ints truncated(Doubles a) {
  return _mm512_cvttpd_epi32(a);
}
// Added to a number of up to 2^31, this rounds it to a whole one, which the low bits of the sum then hold.
constexpr double kRoundingShift = 0x1.8p52;
inline Ints intsOfShifted(Doubles a) {
  return _mm512_cvtepi64_epi32(_mm512_castpd_si512(a));
}
inline Doubles fromInts(Ints a) {
  return _mm512_cvtepi32_pd(a);
}
inline Ints halfClamped(Ints a, int least, int most) {
  return _mm256_srai_epi32(_mm256_min_epi32(_mm256_max_epi32(a, _mm256_set1_epi32(least)), _mm256_set1_epi32(most)), 1);
}
inline void store(Ints a, std::int32_t* out) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), a);
}
// The areas of boxes whose radii stand side by side in lanes of 64 bits.
inline Ints areas(Ints radii) {
  const Ints products = _mm256_mul_epu32(radii, _mm256_srli_epi64(radii, 32));
  return _mm256_slli_epi64(_mm256_srli_epi64(products, 16), 2);
}
inline void storeBoxes(Ints x_radius, Ints y_radius, SampleBoxSize* out) {
  const Ints radii_low = _mm256_unpacklo_epi32(x_radius, y_radius);
  const Ints radii_high = _mm256_unpackhi_epi32(x_radius, y_radius);
  const Ints area_low = areas(radii_low);
  const Ints area_high = areas(radii_high);
  const Ints boxes[4] = {_mm256_unpacklo_epi64(radii_low, area_low), _mm256_unpackhi_epi64(radii_low, area_low),
                         _mm256_unpacklo_epi64(radii_high, area_high), _mm256_unpackhi_epi64(radii_high, area_high)};
  __m128i* const to = reinterpret_cast<__m128i*>(out);
  for (int i = 0; i < 4; ++i) {
    _mm_storeu_si128(to + i, _mm256_castsi256_si128(boxes[i]));
    _mm_storeu_si128(to + i + 4, _mm256_extracti128_si256(boxes[i], 1));
  }
}

}  // namespace

#include "effect/perspective/PixelBatchVector.inl"

const RowBlockFunctions kRowBlocksAvx512 = kFunctions;
