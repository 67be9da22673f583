// IEEE 754 16-bit floats.
#pragma once

#include <bit>
#include <cstdint>

namespace vantorel::ofx {

// Exact.
inline float floatFromHalf(std::uint16_t half) {
  constexpr std::uint32_t kExponentBias = (127U - 15U) << 23;
  const std::uint32_t sign = (half & 0x8000U) << 16;
  const std::uint32_t magnitude = half & 0x7FFFU;
  if (magnitude < 0x0400U) {  // zero and denormals, in units of 2^-24
    return std::bit_cast<float>(std::bit_cast<std::uint32_t>(static_cast<float>(magnitude) * 0x1p-24F) | sign);
  }
  const std::uint32_t special = magnitude >= 0x7C00U ? kExponentBias : 0;
  return std::bit_cast<float>(((magnitude << 13) + kExponentBias + special) | sign);
}

// Rounded to nearest, ties to even; too large values become infinite.
inline std::uint16_t halfFromFloat(float value) {
  const std::uint32_t bits = std::bit_cast<std::uint32_t>(value);
  const auto sign = static_cast<std::uint16_t>((bits >> 16) & 0x8000U);
  const std::uint32_t magnitude = bits & 0x7FFFFFFFU;
  if (magnitude > 0x7F800000U) {
    return static_cast<std::uint16_t>(sign | 0x7E00U);
  }
  if (magnitude >= 0x47800000U) {  // 65536 and up
    return static_cast<std::uint16_t>(sign | 0x7C00U);
  }
  if (magnitude < 0x38800000U) {  // below 2^-14: adding 0.5 rounds and shifts the denormal into the lowest bits
    const float shifted = std::bit_cast<float>(magnitude) + 0.5F;
    return static_cast<std::uint16_t>(sign | (std::bit_cast<std::uint32_t>(shifted) - 0x3F000000U));
  }
  const std::uint32_t tie_to_even = 0xFFFU + ((magnitude >> 13) & 1U);
  return static_cast<std::uint16_t>(sign | ((magnitude - (112U << 23) + tie_to_even) >> 13));
}

}  // namespace vantorel::ofx
