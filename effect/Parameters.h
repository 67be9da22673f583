// The effect's four point parameters: their declaration, and reading them as corner arrays. An array of four corners
// runs upper left, upper right, lower right, lower left, once round the quadrilateral; parameters 1 to 4 are upper
// left, upper right, lower left, lower right.
#pragma once

#include <cstdint>

#include "math/M_stuff.h"
#include "support/PF_HostRecords.h"

// The parameter that each slot of a corner array is read from.
constexpr std::int32_t kCornerParameters[4] = {1, 2, 4, 3};

// The input layer and the four points.
constexpr std::int32_t kParameterCount = 5;

// Declares the four points to the host, stopping at the first that it refuses, whose code is returned. param_count is
// set in every case.
std::int32_t ParamsSetup(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output);

// Reads one parameter's value at the current time: checks it out, hands it to `read`, checks it in. A failed checkout
// is returned at once, without `read` and without a check-in.
template <typename Read>
std::int32_t withCheckedOutPoint(PF_InData* in_data, std::int32_t index, Read read) {
  PF_ParamDef definition{};
  const std::int32_t err = in_data->checkout_param(in_data->effect_ref, index, in_data->current_time,
                                                   in_data->time_step, in_data->time_scale, &definition);
  if (err != ERR_NONE) {
    return err;
  }
  read(definition.value.point);
  return in_data->checkin_param(in_data->effect_ref, &definition);
}

// *point = the value of point parameter `index`, in layer pixels. Left alone when the checkout fails.
std::int32_t GetSinglePointParam(PF_InData* in_data, std::int32_t index, M_Vector2T<double>* point);

// Fills `corners`[0..3] from the four parameters and adds the offsets. The first failure ends it: corners read before
// it keep their values, without offsets, and the rest is left alone.
std::int32_t GetCornerParams(PF_InData* in_data, M_Vector2T<double>* corners, std::int32_t offset_x,
                             std::int32_t offset_y);
