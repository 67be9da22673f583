// 16.16 fixed-point arithmetic.
#pragma once

#include <cstdint>

#include "support/FixedUnits.h"

// A whole number of pixels as 16.16; bits shifted beyond the 32nd are lost.
constexpr std::int32_t fixedFromInt(std::int32_t pixels) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(pixels) << 16);
}

// The low 16 bits: the distance above the floor, also for negative numbers.
constexpr std::int32_t fixedFraction(std::int32_t value) {
  return value & 0xFFFF;
}

// The floor, as a whole number.
constexpr std::int32_t fixedFloor(std::int32_t value) {
  return value >> 16;
}

// The 16.16 quotient a / b, rounded to nearest with halves away from zero, saturated at the ends of the 32-bit range.
// A zero divisor saturates with a's sign.
std::int32_t FixedDiv(std::int32_t a, std::int32_t b);

// The 16.16 value a * b / c, computed in single precision: numbers of magnitude 256.0 and above lose their lowest bits.
// A result outside the 32-bit range, an infinity or a NaN (c = 0) gives -2147483648, whatever its sign.
std::int32_t KZ_FixMulDiv(std::int32_t a, std::int32_t b, std::int32_t c);
