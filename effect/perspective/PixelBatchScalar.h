// The variants that RowBlocks.cpp chooses from. Those beyond the plain one exist on x86-64 only.
#pragma once

#include "effect/perspective/PixelBatch.h"

extern const RowBlockFunctions kRowBlocksPlain;
extern const RowBlockFunctions kRowBlocksAvx2;
extern const RowBlockFunctions kRowBlocksAvx512;

// The plain computations of a block's pixel i at (u, v, w) and of its pixels [first, end). They write `lies_nowhere`
// and return whether it is true of any.
bool storePlainPosition(double u, double v, double w, const InputScale& scale, int i, PixelBlock* out);
bool plainFootprints(RowWalk* walk, const InputScale& scale, int first, int end, PixelBlock* out);
