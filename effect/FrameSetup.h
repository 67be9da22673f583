// The plain protocol's first step: how large the output must be.
#pragma once

#include <cstdint>

#include "support/PF_HostRecords.h"

// The largest output that frame setup accepts, in pixels, for width and height each.
constexpr std::int32_t kLargestOutput = 30000;

// Sets the output's size and origin in `out_data`: the bounding box of the corners, a pixel wider on every side, cut to
// the output's extent hint, which is compared with the corner coordinates directly. Sizes are at least 1; what is not a
// number counts as -2147483648, and so gives 1.
//
// Returns 0; the error of the corner points, `out_data` being left alone; or ERR_FAILED with a message for a size
// beyond kLargestOutput, the origin being written and the size not.
std::int32_t FrameSetup(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output);
