#include "effect/RowBlockLoops.inl"
#include "effect/RowBlocksVariants.h"

const RowBlockFunctions kRowBlocksPlain = kFunctions;
