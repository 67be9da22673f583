// The variants that RowBlocks.cpp chooses from. Those beyond the plain one exist on x86-64 only.
#pragma once

#include "effect/RowBlocks.h"

extern const RowBlockFunctions kRowBlocksPlain;
extern const RowBlockFunctions kRowBlocksAvx2;
extern const RowBlockFunctions kRowBlocksAvx512;

// The plain computations for the pixels [first, end) of a block, whose `lies_nowhere` they write.
bool PlainPositions(RowWalk* walk, const InputScale& scale, int first, int end, PixelBlock* out);
bool PlainFootprints(RowWalk* walk, const InputScale& scale, int first, int end, PixelBlock* out);
