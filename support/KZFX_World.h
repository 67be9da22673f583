// Worlds by channel depth: 8, 16 or 32 bits per channel, 32 meaning floating point.
#pragma once

#include <cstdint>

#include "PF_HostRecords.h"

// *depth = the world's channel depth. On failure *depth is unchanged, and the result is the host's own error, or
// ERR_FAILED with a message if there is no world suite or the pixel format is not one of the three.
std::int32_t KZFX_GetEffectWorldRGBDepth(PF_InData* in_data, PF_OutData* out_data, PF_LayerDef* world,
                                         std::int32_t* depth);

// Asks the host to allocate a world of that size and depth, cleared to zero if `clear`; the host also frees it. Returns
// ERR_FAILED with a message for any other depth or if there is no world suite, else the host's own result.
std::int32_t KZFX_NewWorldRGBDepth(PF_InData* in_data, PF_OutData* out_data, std::int32_t width, std::int32_t height,
                                   std::int32_t depth, bool clear, PF_LayerDef* world);
