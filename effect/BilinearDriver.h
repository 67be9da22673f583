// The bilinear renderer's entry: reads the corners in 16.16, clears the output and runs the scan renderer of its depth.
#pragma once

#include <cstdint>

#include "support/KZFX_srect.h"
#include "support/PF_HostRecords.h"

// Draws `input` onto the quadrilateral of the corner parameters in `output`; both have the same depth. A failed
// parameter read is returned with the output untouched; a failed depth query with the output cleared.
std::int32_t TracePointBilinear(PF_InData* in_data, PF_OutData* out_data, PF_LayerDef* input, PF_LayerDef* output);

// Fills corners[0..3], in corner order, from the four parameters and adds the offsets, in whole pixels, with 32-bit
// wrap-around. The first failure ends it: corners read before it keep their values, without offsets.
std::int32_t GetCornerParamsFixed(PF_InData* in_data, M_FixedPoint* corners, std::int32_t offset_x,
                                  std::int32_t offset_y);

// *point = the value of point parameter `index` as it stands. Left alone when the checkout fails.
std::int32_t GetSingleFixedPointParam(PF_InData* in_data, std::int32_t index, M_FixedPoint* point);
