// The row samplers' arithmetic, in batches of pixels: evaluates the incremental map along a row and computes each
// pixel's position and footprint in the input.
//
// There is one implementation per instruction set; all give the same bits.
#pragma once

#include <cstdint>

#include "effect/FixedPoint.h"
#include "effect/perspective/IncrementalMap.h"
#include "platform/Cpu.h"

// Pixels per batch; a multiple of every instruction set's vector length.
constexpr int kBatchPixels = 64;

// The limits of a footprint's extent along an axis: 1 to 16 input pixels, in 16.16. The box's radius is half the
// extent.
constexpr std::int32_t kSmallestExtent = kFixedOne;
constexpr std::int32_t kLargestExtent = 16 * kFixedOne;

// Input size divided by output size.
struct InputScale {
  double x;
  double y;
};

// The sampling box of a pixel, 16.16, laid out as at the start of PF_SampleParams.
struct SampleBoxSize {
  std::int32_t x_radius;
  std::int32_t y_radius;
  std::int32_t area;
  std::int32_t unused;
};

// Where a batch's pixels lie in the input, 16.16, and, at high quality, their boxes. Both are undefined for a pixel at
// infinity, whose projective divisor is 0.
struct PixelBatch {
  std::int32_t x[kBatchPixels];
  std::int32_t y[kBatchPixels];
  SampleBoxSize box[kBatchPixels];
  bool at_infinity[kBatchPixels];  // defined only if the batch's function returned true
};

// The computations of one instruction set. They step before they evaluate and fill the first `count` pixels (1 to
// kBatchPixels) of the batch. A full batch leaves the map at its last pixel; after a shorter one the map must not be
// used again. They return whether any pixel lies at infinity.
struct PixelBatchFunctions {
  // x = trunc(trunc(u / w) * scale), likewise y.
  bool (*positions)(IncrementalMap* map, const InputScale& scale, int count, PixelBatch* out);
  // Goes round each pixel's neighbours (right, lower right, lower and back) and continues from the value it comes back
  // with. The position is rounded. The box's radii are half the largest distance to a neighbour, between 0.5 and 8
  // pixels.
  bool (*footprints)(IncrementalMap* map, const InputScale& scale, int count, PixelBatch* out);
};

// The functions of an instruction set that is available.
const PixelBatchFunctions& pixelBatchFunctions(InstructionSet set);
