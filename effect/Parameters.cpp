#include "effect/Parameters.h"

#include <cstring>

#include "effect/FixedPoint.h"
#include "effect/Int32Arithmetic.h"
#include "effect/StringTable.h"

namespace {

// A point's string-table row and its default, in percent of the layer.
struct PointDeclaration {
  FX_StringIndex name;
  std::int32_t default_x;
  std::int32_t default_y;
};

constexpr std::int32_t kHundredPercent = 100 * kFixedOne;

constexpr PointDeclaration kPoints[] = {{FX_STRING_UPPER_LEFT, 0, 0},
                                        {FX_STRING_UPPER_RIGHT, kHundredPercent, 0},
                                        {FX_STRING_LOWER_LEFT, 0, kHundredPercent},
                                        {FX_STRING_LOWER_RIGHT, kHundredPercent, kHundredPercent}};

constexpr std::int32_t kAfterTheLast = -1;

// The input layer and the four points.
constexpr std::int32_t kParameterCount = 5;

// The parameter that each slot of a corner array is read from.
constexpr std::int32_t kCornerParameters[4] = {1, 2, 4, 3};

M_Vector2T<double> doublesOf(const PF_PointValue& value) {
  return {doubleFromFixed(value.point_x), doubleFromFixed(value.point_y)};
}

void shift(M_Vector2T<double>* point, std::int32_t offset_x, std::int32_t offset_y) {
  point->x += offset_x;
  point->y += offset_y;
}

void shift(M_FixedPoint* point, std::int32_t offset_x, std::int32_t offset_y) {
  point->x = wrapAdd(point->x, fixedFromInt(offset_x));
  point->y = wrapAdd(point->y, fixedFromInt(offset_y));
}

// Reads one parameter's value at the current time: checks it out, hands it to `read`, checks it in. If the checkout
// fails, its error is returned without calling `read` or checking in.
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

// Reads the corners with `read_point`, and shifts them once all have been read.
template <typename Point>
std::int32_t readCorners(PF_InData* in_data, std::int32_t (*read_point)(PF_InData*, std::int32_t, Point*),
                         Point* corners, std::int32_t offset_x, std::int32_t offset_y) {
  for (int slot = 0; slot < 4; ++slot) {
    const std::int32_t err = read_point(in_data, kCornerParameters[slot], &corners[slot]);
    if (err != ERR_NONE) {
      return err;
    }
  }
  for (int slot = 0; slot < 4; ++slot) {
    shift(&corners[slot], offset_x, offset_y);
  }
  return ERR_NONE;
}

}  // namespace

std::int32_t ParamsSetup(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** /*params*/, PF_LayerDef* /*output*/) {
  PF_ParamDef definition;
  std::memset(&definition, 0, sizeof(definition));
  std::int32_t err = ERR_NONE;
  for (const PointDeclaration& point : kPoints) {
    definition.param_type = PARAM_TYPE_POINT;
    in_data->utility_callbacks->strcpy(definition.name, LookupString(in_data, point.name));
    definition.value.point.point_x = point.default_x;
    definition.value.point.point_y = point.default_y;
    definition.value.point.point_default_x = point.default_x;
    definition.value.point.point_default_y = point.default_y;
    if (err == ERR_NONE) {
      err = in_data->add_param(in_data->effect_ref, kAfterTheLast, &definition);
    }
  }
  out_data->param_count = kParameterCount;
  return err;
}

std::int32_t GetSinglePointParam(PF_InData* in_data, std::int32_t index, M_Vector2T<double>* point) {
  return withCheckedOutPoint(in_data, index, [point](const PF_PointValue& value) { *point = doublesOf(value); });
}

std::int32_t GetSingleFixedPointParam(PF_InData* in_data, std::int32_t index, M_FixedPoint* point) {
  return withCheckedOutPoint(in_data, index, [point](const PF_PointValue& value) {
    *point = {value.point_x, value.point_y};
  });
}

std::int32_t GetCornerParams(PF_InData* in_data, M_Vector2T<double>* corners, std::int32_t offset_x,
                             std::int32_t offset_y) {
  return readCorners(in_data, GetSinglePointParam, corners, offset_x, offset_y);
}

std::int32_t GetCornerParamsFixed(PF_InData* in_data, M_FixedPoint* corners, std::int32_t offset_x,
                                  std::int32_t offset_y) {
  return readCorners(in_data, GetSingleFixedPointParam, corners, offset_x, offset_y);
}

void cornersOfCommand(const PF_InData* in_data, PF_ParamDef** params, M_Vector2T<double>* corners) {
  for (int slot = 0; slot < 4; ++slot) {
    corners[slot] = doublesOf(params[kCornerParameters[slot]]->value.point);
    shift(&corners[slot], in_data->output_origin_x, in_data->output_origin_y);
  }
}
