// The variants that RgbKernels.cpp chooses from; those beyond the scalar one exist on x86-64 only.
#pragma once

#include "cli/colour/RgbKernels.h"

namespace vantorel::cli {

extern const RgbKernels kRgbKernelsScalar;
extern const RgbKernels kRgbKernelsAvx2;
extern const RgbKernels kRgbKernelsAvx512;

// Without the table, and apart from the variants: what they call is not to be compiled with their flags.
float exactValue(const CurveSteps& curve, float x);

}  // namespace vantorel::cli
