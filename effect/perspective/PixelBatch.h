// The row samplers' arithmetic in batches of pixels: the incremental map along the row, every step of which rounds, and
// what follows from it: each pixel's position in the input and its footprint.
//
// The computation exists once per instruction set and gives the same bits in all of them.
#pragma once

#include <cstdint>

#include "effect/FixedPoint.h"
#include "effect/perspective/IncrementalMap.h"
#include "platform/Cpu.h"

// Pixels per batch; a whole number of every set's vectors.
constexpr int kBatchPixels = 64;

// The limits of a footprint's extent along an axis, 16.16: one to 16 input pixels. The box's radius is half of it.
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

// Where a batch's pixels lie in the input, 16.16, and at high quality their boxes. Those of a pixel at infinity, which
// has a projective divisor of 0, are undefined.
struct PixelBatch {
  std::int32_t x[kBatchPixels];
  std::int32_t y[kBatchPixels];
  SampleBoxSize box[kBatchPixels];
  bool at_infinity[kBatchPixels];  // defined only if the batch's function returned true
};

// The computations of one instruction set. They step before they evaluate, fill the first `count` pixels (1 to
// kBatchPixels) of the batch, and leave the map at the last of them where `count` is kBatchPixels. They return whether
// any pixel lies at infinity.
struct PixelBatchFunctions {
  // x = trunc(trunc(u / w) * scale), likewise y.
  bool (*positions)(IncrementalMap* map, const InputScale& scale, int count, PixelBatch* out);
  // Visits each pixel's neighbours: right, lower right, lower and back; the map goes on from there. The position is
  // rounded, and the box has radii between 0.5 and 8 pixels: half the largest distance to a neighbour.
  bool (*footprints)(IncrementalMap* map, const InputScale& scale, int count, PixelBatch* out);
};

// The functions of an instruction set, which must be available.
const PixelBatchFunctions& pixelBatchFunctions(InstructionSet set);
