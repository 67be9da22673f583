#include "cli/pictures/HalfConversion.h"

#include <Imath/half.h>

#include <algorithm>
#include <array>
#include <cstring>

#if defined(__x86_64__)
#include <cpuid.h>
#include <immintrin.h>
#endif

namespace vantorel::cli {

namespace {

template <typename Channel>
void unitFloats(const std::byte* channels, std::size_t count, float* floats) {
  const auto* values = reinterpret_cast<const Channel*>(channels);
  constexpr auto kMost = static_cast<float>(static_cast<Channel>(~Channel{0}));
  std::transform(values, values + count, floats, [](Channel value) { return static_cast<float>(value) / kMost; });
}

void halvesOf(const float* floats, std::size_t count, std::uint16_t* halves) {
  std::transform(floats, floats + count, halves, imath_float_to_half);
}

void floatsOf(const std::uint16_t* halves, std::size_t count, float* floats) {
  std::transform(halves, halves + count, floats, imath_half_to_float);
}

#if defined(__x86_64__)
// The conversion instructions change the bits of some NaNs: pixels with NaNs are converted as without them.
__attribute__((target("avx,f16c"))) bool holdsNaN(__m256 values) {
  return _mm256_movemask_ps(_mm256_cmp_ps(values, values, _CMP_UNORD_Q)) != 0;
}

__attribute__((target("avx,f16c"))) void halvesOfByF16c(const float* floats, std::size_t count, std::uint16_t* halves) {
  constexpr std::size_t kAtOnce = 8;
  std::size_t i = 0;
  for (; i + kAtOnce <= count; i += kAtOnce) {
    const __m256 values = _mm256_loadu_ps(floats + i);
    if (holdsNaN(values)) {
      halvesOf(floats + i, kAtOnce, halves + i);
    } else {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(halves + i),
                       _mm256_cvtps_ph(values, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC));
    }
  }
  halvesOf(floats + i, count - i, halves + i);
}

__attribute__((target("avx,f16c"))) void floatsOfByF16c(const std::uint16_t* halves, std::size_t count, float* floats) {
  constexpr std::size_t kAtOnce = 8;
  std::size_t i = 0;
  for (; i + kAtOnce <= count; i += kAtOnce) {
    const __m256 values = _mm256_cvtph_ps(_mm_loadu_si128(reinterpret_cast<const __m128i*>(halves + i)));
    if (holdsNaN(values)) {
      floatsOf(halves + i, kAtOnce, floats + i);
    } else {
      _mm256_storeu_ps(floats + i, values);
    }
  }
  floatsOf(halves + i, count - i, floats + i);
}

// clang 14's __builtin_cpu_supports does not know the name.
bool hasF16c() {
  unsigned a = 0;
  unsigned b = 0;
  unsigned features = 0;
  unsigned d = 0;
  return __get_cpuid(1, &a, &b, &features, &d) != 0 && (features & bit_F16C) != 0;
}
#endif

auto fastestHalves() {
#if defined(__x86_64__)
  if (__builtin_cpu_supports("avx") && hasF16c()) {
    return halvesOfByF16c;
  }
#endif
  return halvesOf;
}

auto fastestFloats() {
#if defined(__x86_64__)
  if (__builtin_cpu_supports("avx") && hasF16c()) {
    return floatsOfByF16c;
  }
#endif
  return floatsOf;
}

}  // namespace

void toFloat(const std::byte* channels, host::Depth depth, std::size_t count, float* floats) {
  switch (depth) {
    case host::Depth::Bits8:
      return unitFloats<std::uint8_t>(channels, count, floats);
    case host::Depth::Bits16:
      return unitFloats<std::uint16_t>(channels, count, floats);
    case host::Depth::Float:
      std::memcpy(floats, channels, count * sizeof(float));
  }
}

void toHalf(const std::byte* channels, host::Depth depth, std::size_t count, std::uint16_t* halves) {
  static const auto kConvert = fastestHalves();
  if (depth == host::Depth::Float) {
    return kConvert(reinterpret_cast<const float*>(channels), count, halves);
  }
  std::array<float, 1024> floats{};
  const std::size_t channel_bytes = host::bytesPerPixel(depth) / 4;
  for (std::size_t done = 0; done < count; done += floats.size()) {
    const std::size_t part = std::min(floats.size(), count - done);
    toFloat(channels + done * channel_bytes, depth, part, floats.data());
    kConvert(floats.data(), part, halves + done);
  }
}

void fromHalf(const std::uint16_t* halves, std::size_t count, float* floats) {
  static const auto kConvert = fastestFloats();
  kConvert(halves, count, floats);
}

}  // namespace vantorel::cli
