// The batch computations with AVX2 and FMA; called only where the processor has them.
#include <immintrin.h>

#include "effect/perspective/PixelBatchVariants.h"

namespace {

constexpr int kLanes = 4;
using Doubles = __m256d;
using Ints = __m128i;  // as many 32-bit integers

inline Doubles set(double value) {
  return _mm256_set1_pd(value);
}
// 1, 2, 3, 4.
inline Doubles iota() {
  return _mm256_set_pd(4, 3, 2, 1);
}
inline Doubles load(const double* from) {
  return _mm256_loadu_pd(from);
}
inline void store(Doubles a, double* out) {
  _mm256_storeu_pd(out, a);
}
inline void store(Ints a, std::int32_t* out) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), a);
}
inline Doubles mulAdd(Doubles a, Doubles b, Doubles c) {
  return _mm256_fmadd_pd(a, b, c);
}
inline Doubles mulSub(Doubles a, Doubles b, Doubles c) {
  return _mm256_fmsub_pd(a, b, c);
}
inline Doubles abs(Doubles a) {
  return _mm256_andnot_pd(_mm256_set1_pd(-0.0), a);
}
inline Doubles maxAbs(Doubles a, Doubles b) {
  return _mm256_max_pd(abs(a), abs(b));
}
inline Doubles maxOrSecond(Doubles a, Doubles b) {
  return _mm256_max_pd(a, b);
}
inline Doubles copySign(Doubles magnitude, Doubles signs) {
  return _mm256_or_pd(magnitude, _mm256_and_pd(signs, _mm256_set1_pd(-0.0)));
}
inline bool allGreater(Doubles a, Doubles b) {
  return _mm256_movemask_pd(_mm256_cmp_pd(a, b, _CMP_GT_OQ)) == 0xF;
}
inline Ints truncate(Doubles a) {
  return _mm256_cvttpd_epi32(a);
}
inline Ints intsOfShifted(Doubles shifted, Doubles shift) {
  return _mm256_cvtpd_epi32(shifted - shift);
}
inline Doubles toDoubles(Ints a) {
  return _mm256_cvtepi32_pd(a);
}

}  // namespace

#include "effect/perspective/PixelBatchVector.inl"

const PixelBatchFunctions kPixelBatchAvx2{positions, footprints};
