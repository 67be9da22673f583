// The plain protocol's first step: how large the output must be.
#pragma once

#include <cstdint>

#include "support/PF_HostRecords.h"

// The largest output that frame setup accepts, in pixels, for width and height each.
constexpr std::int32_t kLargestOutput = 30000;

// Sets the output's size and origin in `out_data`: the bounding box of the corners, extended by a pixel on every side
// and clipped to the output's extent hint, which is compared with the corner coordinates as they are. Sizes are at
// least 1; a NaN converts to -2147483648 and therefore gives 1.
//
// Returns 0; the error of the corner points, with `out_data` unchanged; or ERR_FAILED with a message for a size beyond
// kLargestOutput, with the origin written but not the size.
std::int32_t FrameSetup(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output);
