// The rational functions' private part.
#pragma once

#include <cstdint>

#include "M_stuff.h"

// The common body of M_AddRatio and M_SubRatio, whose arguments it takes.
std::int32_t Mp_CalcRatio(const M_Ratio* a, const M_Ratio* b, bool subtract, M_Ratio* out, unsigned char* status);

// *out = the best approximation of `value`, rounded to single precision, by terms of at most 2^30. out is required.
// Always 0.
std::int32_t Mp_Double2RatioSmart(M_Ratio* out, double value);
