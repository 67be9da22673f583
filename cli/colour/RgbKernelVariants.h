// The variants that RgbKernels.cpp chooses from; those beyond the scalar one exist on x86-64 only.
#pragma once

#include "cli/colour/RgbKernels.h"

namespace vantorel::cli {

extern const RgbKernels kRgbKernelsScalar;
extern const RgbKernels kRgbKernelsAvx2;
extern const RgbKernels kRgbKernelsAvx512;

// The curve's exact value, without the table. Defined in another file than the variants, so that the functions it calls
// are not compiled with their flags.
float exactValue(const CurveSteps& curve, float x);

}  // namespace vantorel::cli
