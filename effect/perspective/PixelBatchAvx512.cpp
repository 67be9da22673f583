// The batch computations with AVX-512 and FMA; called only where the processor has them.
#include <immintrin.h>

#include "effect/perspective/PixelBatchVariants.h"

namespace {

constexpr int kLanes = 8;
using Doubles = __m512d;
using Ints = __m256i;  // as many 32-bit integers

inline Doubles set(double value) {
  return _mm512_set1_pd(value);
}
// 1, 2, 3 and so on.
inline Doubles iota() {
  return _mm512_set_pd(8, 7, 6, 5, 4, 3, 2, 1);
}
inline Doubles load(const double* from) {
  return _mm512_loadu_pd(from);
}
inline void store(Doubles a, double* out) {
  _mm512_storeu_pd(out, a);
}
inline void store(Ints a, std::int32_t* out) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), a);
}
inline Doubles mulAdd(Doubles a, Doubles b, Doubles c) {
  return _mm512_fmadd_pd(a, b, c);
}
inline Doubles mulSub(Doubles a, Doubles b, Doubles c) {
  return _mm512_fmsub_pd(a, b, c);
}
inline Doubles abs(Doubles a) {
  return _mm512_abs_pd(a);
}
// In unoptimised builds GCC's header defines the intrinsic as a macro, whose implicit conversions cause warnings.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wsign-conversion"
inline Doubles maxAbs(Doubles a, Doubles b) {
  return _mm512_range_pd(a, b, 0b1011);
}
#pragma GCC diagnostic pop
inline Doubles maxOrSecond(Doubles a, Doubles b) {
  return _mm512_max_pd(a, b);
}
inline Doubles copySign(Doubles magnitude, Doubles signs) {
  return _mm512_or_pd(magnitude, _mm512_and_pd(signs, _mm512_set1_pd(-0.0)));
}
inline bool allGreater(Doubles a, Doubles b) {
  return _mm512_cmp_pd_mask(a, b, _CMP_GT_OQ) == 0xFF;
}
inline Ints truncate(Doubles a) {
  return _mm512_cvttpd_epi32(a);
}
inline Ints intsOfShifted(Doubles shifted, Doubles /*shift*/) {
  return _mm512_cvtepi64_epi32(_mm512_castpd_si512(shifted));
}
inline Doubles toDoubles(Ints a) {
  return _mm512_cvtepi32_pd(a);
}

}  // namespace

#include "effect/perspective/PixelBatchVector.inl"

const PixelBatchFunctions kPixelBatchAvx512{positions, footprints};
