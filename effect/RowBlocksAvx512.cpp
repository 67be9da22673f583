// Compiled for AVX-512 (F, DQ, VL); called only where the machine has it.
#include "effect/RowBlockLoops.inl"
#include "effect/RowBlocksVariants.h"

const RowBlockFunctions kRowBlocksAvx512 = kFunctions;
