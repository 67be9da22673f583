// The kernels with AVX-512; called only if the processor has it.
#include <immintrin.h>

#include "cli/colour/RgbKernelVariants.h"

namespace vantorel::cli {

namespace {

constexpr int kPixels = 4;  // per vector
using Floats = __m512;
using Ints = __m512i;
using Mask = __mmask16;
struct Pairs {
  Floats first;
  Floats second;
};

inline Floats load(const float* from) {
  return _mm512_loadu_ps(from);
}
inline void store(Floats a, float* out) {
  _mm512_storeu_ps(out, a);
}
inline Floats set(float value) {
  return _mm512_set1_ps(value);
}
inline Ints set(int value) {
  return _mm512_set1_epi32(value);
}
// Four numbers for each pixel.
inline Floats repeat(const float* four) {
  return _mm512_broadcast_f32x4(_mm_loadu_ps(four));
}
template <int kChannel>
inline Floats spread(Floats pixels) {
  return _mm512_permute_ps(pixels, kChannel * 0x55);
}
inline Floats colourAndAlpha(Floats colour, Floats alpha) {
  return _mm512_mask_mov_ps(colour, 0x8888, alpha);
}
inline Mask equal(Floats a, Floats b) {
  return _mm512_cmp_ps_mask(a, b, _CMP_EQ_OQ);
}
inline Mask equal(Ints a, Ints b) {
  return _mm512_cmpeq_epi32_mask(a, b);
}
inline Mask either(Mask a, Mask b) {
  return _kor_mask16(a, b);
}
inline Floats select(Mask mask, Floats where_set, Floats elsewhere) {
  return _mm512_mask_mov_ps(elsewhere, mask, where_set);
}
inline unsigned bitsOf(Mask mask) {
  return mask;
}
inline Ints asInts(Floats a) {
  return _mm512_castps_si512(a);
}
inline Ints clamp(Ints a, Ints most) {
  return _mm512_min_epi32(_mm512_max_epi32(a, _mm512_setzero_si512()), most);
}
inline Ints bitAnd(Ints a, Ints b) {
  return _mm512_and_si512(a, b);
}
inline Ints add(Ints a, Ints b) {
  return _mm512_add_epi32(a, b);
}
template <int kBits>
inline Ints shiftRight(Ints a) {
  return _mm512_srai_epi32(a, kBits);
}
inline Floats toFloats(Ints a) {
  return _mm512_cvtepi32_ps(a);
}
// Loads table[i] and table[i + 1], as one pair, for every i in the index.
inline Pairs gatherPairs(const float* table, Ints index) {
  const Floats low = _mm512_castpd_ps(_mm512_i32gather_pd(_mm512_castsi512_si256(index), table, sizeof(float)));
  const Floats high = _mm512_castpd_ps(_mm512_i32gather_pd(_mm512_extracti64x4_epi64(index, 1), table, sizeof(float)));
  const Ints first = _mm512_set_epi32(30, 28, 26, 24, 22, 20, 18, 16, 14, 12, 10, 8, 6, 4, 2, 0);
  const Ints second = _mm512_add_epi32(first, _mm512_set1_epi32(1));
  return {_mm512_permutex2var_ps(low, first, high), _mm512_permutex2var_ps(low, second, high)};
}

}  // namespace

}  // namespace vantorel::cli

#include "cli/colour/RgbKernelsVector.inl"

namespace vantorel::cli {

const RgbKernels kRgbKernelsAvx512{isOpaque, unpremultiply, repremultiply, convert};

}  // namespace vantorel::cli
