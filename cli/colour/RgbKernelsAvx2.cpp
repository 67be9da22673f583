// The kernels with AVX2; called only if the processor has it.
#include <immintrin.h>

#include "cli/colour/RgbKernelVariants.h"

namespace vantorel::cli {

namespace {

constexpr int kPixels = 2;  // per vector
using Floats = __m256;
using Ints = __m256i;
using Mask = __m256;
struct Pairs {
  Floats first;
  Floats second;
};

inline Floats load(const float* from) {
  return _mm256_loadu_ps(from);
}
inline void store(Floats a, float* out) {
  _mm256_storeu_ps(out, a);
}
inline Floats set(float value) {
  return _mm256_set1_ps(value);
}
inline Ints set(int value) {
  return _mm256_set1_epi32(value);
}
// Four numbers for each pixel.
inline Floats repeat(const float* four) {
  return _mm256_broadcast_ps(reinterpret_cast<const __m128*>(four));
}
template <int kChannel>
inline Floats spread(Floats pixels) {
  return _mm256_permute_ps(pixels, kChannel * 0x55);
}
inline Floats colourAndAlpha(Floats colour, Floats alpha) {
  return _mm256_blend_ps(colour, alpha, 0x88);
}
inline Mask equal(Floats a, Floats b) {
  return _mm256_cmp_ps(a, b, _CMP_EQ_OQ);
}
inline Mask equal(Ints a, Ints b) {
  return _mm256_castsi256_ps(_mm256_cmpeq_epi32(a, b));
}
inline Mask either(Mask a, Mask b) {
  return _mm256_or_ps(a, b);
}
inline Floats select(Mask mask, Floats where_set, Floats elsewhere) {
  return _mm256_blendv_ps(elsewhere, where_set, mask);
}
inline unsigned bitsOf(Mask mask) {
  return static_cast<unsigned>(_mm256_movemask_ps(mask));
}
inline Ints asInts(Floats a) {
  return _mm256_castps_si256(a);
}
inline Ints clamp(Ints a, Ints most) {
  return _mm256_min_epi32(_mm256_max_epi32(a, _mm256_setzero_si256()), most);
}
inline Ints bitAnd(Ints a, Ints b) {
  return _mm256_and_si256(a, b);
}
inline Ints add(Ints a, Ints b) {
  return _mm256_add_epi32(a, b);
}
template <int kBits>
inline Ints shiftRight(Ints a) {
  return _mm256_srai_epi32(a, kBits);
}
inline Floats toFloats(Ints a) {
  return _mm256_cvtepi32_ps(a);
}
// Loads table[i] and table[i + 1], as one pair, for every i in the index. Uses the masked intrinsic because the
// compiler's header for the unmasked one warns about a variable that it deliberately leaves uninitialised.
inline Pairs gatherPairs(const float* table, Ints index) {
  const auto* const pairs = reinterpret_cast<const double*>(table);
  const __m256d none = _mm256_setzero_pd();
  const __m256d all = _mm256_castsi256_pd(_mm256_set1_epi64x(-1));
  const Floats low =
      _mm256_castpd_ps(_mm256_mask_i32gather_pd(none, pairs, _mm256_castsi256_si128(index), all, sizeof(float)));
  const Floats high =
      _mm256_castpd_ps(_mm256_mask_i32gather_pd(none, pairs, _mm256_extracti128_si256(index, 1), all, sizeof(float)));
  const auto in_order = [](Floats a) {
    return _mm256_castpd_ps(_mm256_permute4x64_pd(_mm256_castps_pd(a), _MM_SHUFFLE(3, 1, 2, 0)));
  };
  return {in_order(_mm256_shuffle_ps(low, high, _MM_SHUFFLE(2, 0, 2, 0))),
          in_order(_mm256_shuffle_ps(low, high, _MM_SHUFFLE(3, 1, 3, 1)))};
}

}  // namespace

}  // namespace vantorel::cli

#include "cli/colour/RgbKernelsVector.inl"

namespace vantorel::cli {

const RgbKernels kRgbKernelsAvx2{isOpaque, unpremultiply, repremultiply, convert};

}  // namespace vantorel::cli
