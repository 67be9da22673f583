// Declares the effect's four point parameters and reads them as corner arrays. An array of four corners goes once round
// the quadrilateral: upper left, upper right, lower right, lower left; parameters 1 to 4 are upper left, upper right,
// lower left, lower right.
#pragma once

#include <cstdint>

#include "math/M_stuff.h"
#include "support/KZFX_srect.h"
#include "support/PF_HostRecords.h"

// Declares the four points to the host. Stops at the first one that the host refuses, and returns its error code.
// param_count is always set.
std::int32_t ParamsSetup(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output);

// *point = the current value of point parameter `index`, in layer pixels: as doubles, or in 16.16 unconverted. Returns
// the error of the checkout, which leaves *point unchanged, or of the check-in.
std::int32_t GetSinglePointParam(PF_InData* in_data, std::int32_t index, M_Vector2T<double>* point);
std::int32_t GetSingleFixedPointParam(PF_InData* in_data, std::int32_t index, M_FixedPoint* point);

// Fills corners[0..3] from the four parameters and adds the offsets, which are in whole pixels; in 16.16 the sums wrap.
// Stops at the first error: corners read before it hold their values without the offsets, and the rest are unchanged.
std::int32_t GetCornerParams(PF_InData* in_data, M_Vector2T<double>* corners, std::int32_t offset_x,
                             std::int32_t offset_y);
std::int32_t GetCornerParamsFixed(PF_InData* in_data, M_FixedPoint* corners, std::int32_t offset_x,
                                  std::int32_t offset_y);

// Fills corners[0..3] from the values that the host passed with the command, without a checkout, and adds the output
// origin.
void cornersOfCommand(const PF_InData* in_data, PF_ParamDef** params, M_Vector2T<double>* corners);
