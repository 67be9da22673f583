// The conversion of doubles to 32-bit integers, defined for every double.
#pragma once

#include <cstdint>
#include <limits>

// A double truncated toward zero. NaN and values outside the int32 range give -2147483648.
constexpr std::int32_t int32FromDouble(double value) {
  // Written so that a NaN fails the test.
  if (value > -2147483649.0 && value < 2147483648.0) {
    return static_cast<std::int32_t>(value);
  }
  return std::numeric_limits<std::int32_t>::min();
}
