// The perspective renderer's row samplers: each call maps the pixels of one output row back into the input and has the
// host sample it there.
#pragma once

#include <cstdint>

#include "effect/perspective/PerspectiveInfo.h"
#include "platform/Cpu.h"
#include "support/PF_HostRecords.h"

// At standard quality: one area sample of one input pixel's size per output pixel.
//
// Writes to `out` the row of `out_width` pixels that starts at output pixel (x, y). `info` is the KZFX_PerspectiveInfo;
// `in` is not read. Rows may be sampled at the same time on different threads. Pixels outside the reject box, and those
// whose projective divisor is 0, are transparent. Always returns 0. When the host's sampler fails, the pixel is
// whatever the sampler wrote, or else a copy of the pixel before it, transparent for the first one in the reject box.
std::int32_t KZFX_TracePointFPU(void* info, std::int32_t x, std::int32_t y, PF_Pixel8* in, PF_Pixel8* out);
std::int32_t KZFX_TracePointFPU16(void* info, std::int32_t x, std::int32_t y, PF_Pixel16* in, PF_Pixel16* out);
std::int32_t KZFX_TracePointFPUFloat(void* info, std::int32_t x, std::int32_t y, PF_PixelFloat* in, PF_PixelFloat* out);

// At high quality: the same, with a box that is as large as the pixel's footprint in the input. The footprint is
// measured by mapping the right, lower right and lower neighbours back as well; the box's radius along an axis is half
// the largest distance to them, between 0.5 and 8 input pixels. Pixels are also transparent if a neighbour's divisor is
// 0.
std::int32_t KZFX_TracePointHi(void* info, std::int32_t x, std::int32_t y, PF_Pixel8* in, PF_Pixel8* out);
std::int32_t KZFX_TracePointHi16(void* info, std::int32_t x, std::int32_t y, PF_Pixel16* in, PF_Pixel16* out);
std::int32_t KZFX_TracePointHiFloat(void* info, std::int32_t x, std::int32_t y, PF_PixelFloat* in, PF_PixelFloat* out);

enum class SamplingQuality { Standard, High };

// The same with the arithmetic of a given instruction set, which must be available; the results are the same in all.
template <SamplingQuality kQuality, typename Pixel>
void traceRow(const KZFX_PerspectiveInfo& info, std::int32_t x, std::int32_t y, Pixel* out, InstructionSet set);
