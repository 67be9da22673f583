// Internal declarations of the integer functions.
#pragma once

#include <cstdint>

// The number of leading zero bits of each 4-bit value.
extern const unsigned char Mp_G_lead_zeros[16];

// The absolute value; that of -2147483648 is 2^31.
constexpr std::uint32_t Mp_Magnitude(std::int32_t x) {
  return x < 0 ? 0u - static_cast<std::uint32_t>(x) : static_cast<std::uint32_t>(x);
}
