// The perspective renderer's row samplers at high quality: one area sample per output pixel, over a box of the size of
// the pixel's footprint in the input. The footprint is measured by mapping the right, lower right and lower neighbours
// back as well; the box's half-size is half the largest distance per axis, between 0.5 and 8 input pixels.
#pragma once

#include <cstdint>

#include "effect/perspective/PixelBatch.h"
#include "support/PF_HostRecords.h"

// As the samplers at standard quality (StandardSampler.h); pixels are also transparent where a neighbour's projective
// divisor is 0.
std::int32_t KZFX_TracePointHi(void* info, std::int32_t x, std::int32_t y, PF_Pixel8* in, PF_Pixel8* out);
std::int32_t KZFX_TracePointHi16(void* info, std::int32_t x, std::int32_t y, PF_Pixel16* in, PF_Pixel16* out);
std::int32_t KZFX_TracePointHiFloat(void* info, std::int32_t x, std::int32_t y, PF_PixelFloat* in, PF_PixelFloat* out);

// The same with the block computations of a chosen instruction set; the results are the same in all.
template <typename Pixel>
void traceHighQualityRow(const void* info, std::int32_t x, std::int32_t y, Pixel* out,
                         const RowBlockFunctions& functions);
