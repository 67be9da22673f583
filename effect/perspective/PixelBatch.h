// The row samplers' arithmetic in blocks of pixels: the walk along the row in homogeneous coordinates, every step of
// which rounds, and what follows from them: each pixel's position in the input and its footprint.
//
// The computation exists once per instruction set and gives the same bits in all of them.
#pragma once

#include <cstdint>

#include "effect/perspective/IncrementalMap.h"

// Pixels per block; a whole number of every set's vectors.
constexpr int kRowBlock = 64;

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

// Where a block's pixels lie in the input, 16.16, and at high quality their boxes. A pixel that lies nowhere, because a
// projective divisor is 0, has undefined ones.
struct PixelBlock {
  std::int32_t x[kRowBlock];
  std::int32_t y[kRowBlock];
  SampleBoxSize box[kRowBlock];
  bool lies_nowhere[kRowBlock];  // defined only if the block's function returned true
};

// The block computations of one instruction set. They step before they evaluate, fill the first `count` pixels (1 to
// kRowBlock) of the block, and leave the walk at the last of them where `count` is kRowBlock. They return whether any
// pixel lies nowhere.
struct RowBlockFunctions {
  // x = trunc(trunc(u / w) * scale), likewise y.
  bool (*positions)(RowWalk* walk, const InputScale& scale, int count, PixelBlock* out);
  // Walks round each pixel's neighbours: right, lower right, lower and back; the walk goes on from there. The position
  // is rounded, and the box has radii between 0.5 and 8 pixels: half the largest distance to a neighbour.
  bool (*footprints)(RowWalk* walk, const InputScale& scale, int count, PixelBlock* out);
};

enum class InstructionSet { Plain, Avx2, Avx512 };

// The functions of an instruction set, or null where this machine or build does not have it.
const RowBlockFunctions* rowBlockFunctionsFor(InstructionSet set);

// The functions of the best instruction set that this machine has.
const RowBlockFunctions& bestRowBlockFunctions();
