// The variants that PixelBatch.cpp chooses from; those beyond the scalar one exist on x86-64 only. The vector variants
// fall back to the scalar computations where a divisor may be 0.
#pragma once

#include "effect/perspective/PixelBatch.h"

extern const PixelBatchFunctions kPixelBatchScalar;
extern const PixelBatchFunctions kPixelBatchAvx2;
extern const PixelBatchFunctions kPixelBatchAvx512;

// The scalar computations of a batch's pixel i at (u, v, w), and of its pixels [first, end). They write `at_infinity`
// and return whether it is true of any.
bool scalarPosition(double u, double v, double w, const InputScale& scale, int i, PixelBatch* out);
bool scalarFootprints(IncrementalMap* map, const InputScale& scale, int first, int end, PixelBatch* out);
