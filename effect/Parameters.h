// The effect's four point parameters: their declaration, and reading them as corner arrays. An array of four corners
// runs upper left, upper right, lower right, lower left, once round the quadrilateral; parameters 1 to 4 are upper
// left, upper right, lower left, lower right.
#pragma once

#include <cstdint>

#include "math/M_stuff.h"
#include "support/KZFX_srect.h"
#include "support/PF_HostRecords.h"

// Declares the four points to the host, stopping at the first that it refuses, whose code is returned. param_count is
// set in every case.
std::int32_t ParamsSetup(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output);

// *point = the current value of point parameter `index`, in layer pixels: as doubles, or in 16.16 as it stands. Returns
// the first error of the checkout, which leaves *point alone, and the check-in.
std::int32_t GetSinglePointParam(PF_InData* in_data, std::int32_t index, M_Vector2T<double>* point);
std::int32_t GetSingleFixedPointParam(PF_InData* in_data, std::int32_t index, M_FixedPoint* point);

// Fills corners[0..3] from the four parameters and adds the offsets, which are in whole pixels; in 16.16 the sums wrap.
// The first failure ends it: corners read before it keep their values, without offsets, and the rest is left alone.
std::int32_t GetCornerParams(PF_InData* in_data, M_Vector2T<double>* corners, std::int32_t offset_x,
                             std::int32_t offset_y);
std::int32_t GetCornerParamsFixed(PF_InData* in_data, M_FixedPoint* corners, std::int32_t offset_x,
                                  std::int32_t offset_y);

// Fills corners[0..3] from the values that the host passed with the command, without checking them out, and adds the
// output origin.
void cornersOfCommand(const PF_InData* in_data, PF_ParamDef** params, M_Vector2T<double>* corners);
