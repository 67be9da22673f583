// Helpers of the vector area samplers: loading and storing the pixels of each depth, and the weights of small boxes.
// The instruction sets' files include this first.
//
// Everything that these files include is in an unnamed namespace and calls no inline function of the standard library:
// the linker keeps only one copy of an inline function, and if that were the one compiled for this instruction set,
// code that has to run on any processor would call it.
#include <immintrin.h>

#include <cstddef>

#include "host/sampling/AreaSamplerVariants.h"
#include "host/sampling/SampleBox.h"
#include "host/sampling/VectorConstants.h"

namespace vantorel::host {

namespace {

inline __m128i loadBytes4(const void* address) {
  int word;
  __builtin_memcpy(&word, address, 4);
  return _mm_cvtsi32_si128(word);
}

inline __m128i loadBytes8(const void* address) {
  return _mm_loadl_epi64(static_cast<const __m128i*>(address));
}

inline __m128i loadBytes16(const void* address) {
  return _mm_loadu_si128(static_cast<const __m128i*>(address));
}

template <typename Lane>
inline __m128i constant128(const Lane* lanes) {
  return _mm_load_si128(reinterpret_cast<const __m128i*>(lanes));
}

// ---- 8 bit ----------------------------------------------------------------------------------------------------------

struct Pixels8 {
  using Pixel = PF_Pixel8;
  static constexpr std::ptrdiff_t kPixelBytes = 4;
  static constexpr int kColumnsPerLoad = 4;
  static constexpr bool kOnePixelIsMean = true;  // the mean over a box within one pixel equals that pixel to the bit

  static PF_AreaSampler<Pixel> scalar() { return kScalarAreaSamplers.centres().sample8; }

  // Two adjacent pixels, in 32-bit lanes.
  static __m256i widenPair(const std::byte* pixels) { return _mm256_cvtepu8_epi32(loadBytes8(pixels)); }

  static __m256d widen(const std::byte* pixel) { return _mm256_cvtepi32_pd(_mm_cvtepu8_epi32(loadBytes4(pixel))); }

  // A column's sum fits into a signed lane.
  static constexpr int kSignFlip = 0;
  static constexpr double kSignedZero = 0.0;

  static void storeLanes(__m128i lanes, Pixel* out) {
    const __m128i words = _mm_packus_epi32(lanes, lanes);
    const int bytes = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
    __builtin_memcpy(out, &bytes, 4);
  }
};

// ---- 16 bit ---------------------------------------------------------------------------------------------------------

struct Pixels16 {
  using Pixel = PF_Pixel16;
  static constexpr std::ptrdiff_t kPixelBytes = 8;
  static constexpr int kColumnsPerLoad = 2;
  static constexpr bool kOnePixelIsMean = true;

  static PF_AreaSampler<Pixel> scalar() { return kScalarAreaSamplers.centres().sample16; }

  static __m256i widenPair(const std::byte* pixels) { return _mm256_cvtepu16_epi32(loadBytes16(pixels)); }

  static __m256d widen(const std::byte* pixel) { return _mm256_cvtepi32_pd(_mm_cvtepu16_epi32(loadBytes8(pixel))); }

  // A channel times 65536 takes all 32 bits, and the conversion to double is signed: 2^31 is subtracted before it.
  static constexpr int kSignFlip = -2147483648;
  static constexpr double kSignedZero = 32768.0;

  static void storeLanes(__m128i lanes, Pixel* out) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi32(lanes, lanes));
  }
};

// ---- Float ----------------------------------------------------------------------------------------------------------

// A weight times a float is exact in a double, so a fused multiply-add rounds like a separate product and sum.
struct PixelsFloat {
  using Pixel = PF_PixelFloat;
  static constexpr std::ptrdiff_t kPixelBytes = 16;
  static constexpr int kColumnsPerLoad = 1;
  static constexpr bool kOnePixelIsMean = false;  // it may be NaN or -0

  static PF_AreaSampler<Pixel> scalar() { return kScalarAreaSamplers.centres().sample_float; }

  static __m256d widen(const std::byte* pixel) {
    return _mm256_cvtps_pd(_mm_loadu_ps(reinterpret_cast<const float*>(pixel)));
  }

  static void store(__m256d mean, Pixel* out) { _mm_storeu_ps(&out->alpha, _mm256_cvtpd_ps(mean)); }
};

// ---- The weights of small boxes -------------------------------------------------------------------------------------

// A box of one to three pixels' size: its beginning within its first pixel and its length, in 1/65536 pixel, with x in
// the first 32-bit lane and y in the second; the other lanes are 0.
struct SmallBox {
  __m128i begin;
  __m128i length;
};

// Loads both radii at once. The caller should also store them with a single store: store forwarding fails if a load
// spans two stores.
inline SmallBox smallBox(std::int32_t x, std::int32_t y, const PF_SampleParams& params) {
  static_assert(offsetof(PF_SampleParams, y_radius) == offsetof(PF_SampleParams, x_radius) + 4);
  const __m128i centre = _mm_insert_epi32(_mm_cvtsi32_si128(x), y, 1);
  const __m128i radius = loadBytes8(&params.x_radius);
  const __m128i begin = _mm_add_epi32(_mm_sub_epi32(centre, radius), constant128(kVectorConstants.narrow_half));
  return {_mm_and_si128(begin, constant128(kVectorConstants.narrow_fraction)), _mm_add_epi32(radius, radius)};
}

// The weights of the up to kSide columns and kSide rows that a box of one to kSide - 1 pixels a side overlaps: x in the
// low lane and y in the high one. Pixels that it does not overlap have the weight 0.
template <int kSide>
struct BoxWeights {
  __m128d length;
  __m128d weight[std::size_t{kSide}];
};

template <int kSide>
inline BoxWeights<kSide> boxWeights(const SmallBox& box) {
  const __m128d one = _mm_set1_pd(kFixedOne);
  BoxWeights<kSide> weights;
  weights.length = _mm_cvtepi32_pd(box.length);
  weights.weight[0] = _mm_sub_pd(one, _mm_cvtepi32_pd(box.begin));
  __m128d rest = _mm_sub_pd(weights.length, weights.weight[0]);
  for (int i = 1; i < kSide - 1; ++i) {
    weights.weight[i] = _mm_min_pd(rest, one);
    rest = _mm_sub_pd(rest, weights.weight[i]);
  }
  weights.weight[kSide - 1] = rest;
  return weights;
}

inline __m256d broadcastX(__m128d both) {
  return _mm256_broadcastsd_pd(both);
}
inline __m256d broadcastY(__m128d both) {
  return _mm256_permute4x64_pd(_mm256_castpd128_pd256(both), 0x55);
}

template <int kSide>
inline __m256d areaOf(const BoxWeights<kSide>& weights) {
  return _mm256_mul_pd(broadcastX(weights.length), broadcastY(weights.length));
}

}  // namespace

}  // namespace vantorel::host
