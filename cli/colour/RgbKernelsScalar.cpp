// The scalar kernels: for processors without AVX2, and the reference that the vector kernels must match to the bit.
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "cli/colour/RgbKernelVariants.h"
#include "cli/colour/TransferCurve.h"
#include "host/Alpha.h"

namespace vantorel::cli {

namespace {

bool isOpaque(const float* row, int width) {
  return host::alphaOfRow(row, width) == host::RowAlpha::Opaque;
}

float lookUp(const CurveSteps& curve, float x) {
  const std::uint32_t place = std::bit_cast<std::uint32_t>(std::abs(x)) - CurveTable::kLowest;
  if (place >= CurveTable::kSteps << CurveTable::kFractionBits) {
    return x == 0.0f ? curve.at_zero : exactValue(curve, x);
  }
  const float* const value =
      curve.values + (x < 0.0f ? CurveTable::kSteps + 1 : 0) + (place >> CurveTable::kFractionBits);
  constexpr std::uint32_t kOneStep = 1u << CurveTable::kFractionBits;
  const float fraction = static_cast<float>(place & (kOneStep - 1)) * (1.0f / static_cast<float>(kOneStep));
  return value[0] + (value[1] - value[0]) * fraction;
}

void lookUpColour(const CurveSteps& curve, float* pixel) {
  for (int c = 0; c < 3; ++c) {
    pixel[c] = lookUp(curve, pixel[c]);
  }
}

void multiply(const RgbSteps& steps, float* pixel) {
  const std::array<float, 3> in{pixel[0], pixel[1], pixel[2]};
  for (std::size_t c = 0; c < 3; ++c) {
    pixel[c] = steps.columns[0][c] * in[0] + steps.columns[1][c] * in[1] + steps.columns[2][c] * in[2];
  }
}

void convert(const RgbSteps& steps, float* row, int width) {
  for (float* pixel = row; pixel != row + 4 * static_cast<std::ptrdiff_t>(width); pixel += 4) {
    if (steps.decode.values != nullptr) {
      lookUpColour(steps.decode, pixel);
    }
    if (steps.has_matrix) {
      multiply(steps, pixel);
    }
    if (steps.encode.values != nullptr) {
      lookUpColour(steps.encode, pixel);
    }
  }
}

}  // namespace

const RgbKernels kRgbKernelsScalar{isOpaque, host::unpremultiplyRow<float>, host::repremultiplyRow<float>, convert};

}  // namespace vantorel::cli
