// Internal declarations of the rational functions.
#pragma once

#include <cstdint>

#include "M_stuff.h"

// The common implementation of M_AddRatio and M_SubRatio, with the same arguments.
std::int32_t Mp_CalcRatio(const M_Ratio* a, const M_Ratio* b, bool subtract, M_Ratio* out, unsigned char* status);

// *out = the best approximation of `value`, rounded to single precision, with terms of at most 2^30. out is required.
// Always 0.
std::int32_t Mp_Double2RatioSmart(M_Ratio* out, double value);
