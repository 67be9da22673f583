// Compiled for AVX2; called only where the machine has it.
#include "effect/RowBlockLoops.inl"
#include "effect/RowBlocksVariants.h"

const RowBlockFunctions kRowBlocksAvx2 = kFunctions;
