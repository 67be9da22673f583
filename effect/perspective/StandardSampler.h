// The perspective renderer's row samplers at standard quality: one area sample of one input pixel's size per output
// pixel, at the position that the output pixel maps back to.
#pragma once

#include <cstdint>

#include "effect/perspective/PixelBatch.h"
#include "support/PF_HostRecords.h"

// Writes the row of `out_width` pixels that starts at output pixel (x, y), from `out` on. `info` is the
// KZFX_PerspectiveInfo; `in` is not read. Rows may be sampled at the same time on different threads. Pixels outside the
// reject box, and those whose projective divisor is 0, are transparent. Always returns 0: errors of the host's sampler
// leave the pixel as the sampler left it, transparent where it wrote nothing yet in the row.
std::int32_t KZFX_TracePointFPU(void* info, std::int32_t x, std::int32_t y, PF_Pixel8* in, PF_Pixel8* out);
std::int32_t KZFX_TracePointFPU16(void* info, std::int32_t x, std::int32_t y, PF_Pixel16* in, PF_Pixel16* out);
std::int32_t KZFX_TracePointFPUFloat(void* info, std::int32_t x, std::int32_t y, PF_PixelFloat* in, PF_PixelFloat* out);

// The same with the block computations of a chosen instruction set; the results are the same in all.
template <typename Pixel>
void traceStandardRow(const void* info, std::int32_t x, std::int32_t y, Pixel* out, const RowBlockFunctions& functions);
