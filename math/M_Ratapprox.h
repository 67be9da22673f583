// Best rational approximation of single-precision values.
#pragma once

#include <cstdint>

#include "M_stuff.h"

// Returns the fraction nearest to x among those whose numerator (as a magnitude) and denominator do not exceed `limit`,
// in lowest terms, with the sign of x in the numerator. Of two that are equally near, it is the one with the smaller
// terms, where 0/1 counts as the smallest. For magnitudes of `limit` and above, infinity included, the result is
// limit/1. A limit of 0 or less gives 0/1; NaN with a positive limit gives the invalid 0/0.
M_Ratio ratapprox(std::int32_t limit, float x);

// *hi : *lo = the exact 64-bit product a * b as its high and low 32-bit words. Both pointers are required, and
// distinct.
void Mul32(std::uint32_t a, std::uint32_t b, std::uint32_t* hi, std::uint32_t* lo);
