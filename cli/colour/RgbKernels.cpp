#include "cli/colour/RgbKernels.h"

#include <cstddef>

#include "cli/colour/RgbKernelVariants.h"
#include "cli/colour/TransferCurve.h"

namespace vantorel::cli {

namespace {

// In the order of InstructionSet.
constexpr const RgbKernels* kVariants[] = {
    &kRgbKernelsScalar,
#if defined(__x86_64__)
    &kRgbKernelsAvx2,
    &kRgbKernelsAvx512,
#endif
};

}  // namespace

CurveSteps curveSteps(const CurveTable* table) {
  return table == nullptr ? CurveSteps{} : CurveSteps{table->values(), table->atZero(), table};
}

float exactValue(const CurveSteps& curve, float x) {
  return curve.table->exactly(x);
}

const RgbKernels& rgbKernels(InstructionSet set) {
  return *kVariants[static_cast<std::size_t>(set)];
}

}  // namespace vantorel::cli
