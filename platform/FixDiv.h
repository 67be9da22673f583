// 16.16 fixed-point division.
#pragma once

#include <cstdint>

// The 16.16 quotient of two 16.16 numbers, rounded to nearest with halves away from zero. Saturates to 2147483647 or
// -2147483648 if the quotient leaves the 32-bit range; a zero divisor saturates with the dividend's sign.
std::int32_t FixDiv(std::int32_t dividend, std::int32_t divisor);
