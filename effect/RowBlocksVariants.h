// The variants that RowBlocks.cpp chooses from. Those beyond the plain one exist on x86-64 only.
#pragma once

#include "effect/RowBlocks.h"

extern const RowBlockFunctions kRowBlocksPlain;
extern const RowBlockFunctions kRowBlocksAvx2;
extern const RowBlockFunctions kRowBlocksAvx512;
