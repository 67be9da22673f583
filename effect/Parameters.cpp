#include "effect/Parameters.h"

#include <cstring>

#include "effect/StringTable.h"

namespace {

// A point's string-table row and its default, in percent of the layer.
struct PointDeclaration {
  FX_StringIndex name;
  std::int32_t default_x;
  std::int32_t default_y;
};

constexpr std::int32_t kHundredPercent = 100 * 65536;

constexpr PointDeclaration kPoints[] = {{FX_STRING_UPPER_LEFT, 0, 0},
                                        {FX_STRING_UPPER_RIGHT, kHundredPercent, 0},
                                        {FX_STRING_LOWER_LEFT, 0, kHundredPercent},
                                        {FX_STRING_LOWER_RIGHT, kHundredPercent, kHundredPercent}};

constexpr std::int32_t kAfterTheLast = -1;

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
  return withCheckedOutPoint(in_data, index, [point](const PF_PointValue& value) {
    *point = {value.point_x / 65536.0, value.point_y / 65536.0};
  });
}

std::int32_t GetCornerParams(PF_InData* in_data, M_Vector2T<double>* corners, std::int32_t offset_x,
                             std::int32_t offset_y) {
  for (int slot = 0; slot < 4; ++slot) {
    const std::int32_t err = GetSinglePointParam(in_data, kCornerParameters[slot], &corners[slot]);
    if (err != ERR_NONE) {
      return err;
    }
  }
  for (int slot = 0; slot < 4; ++slot) {
    corners[slot].x += offset_x;
    corners[slot].y += offset_y;
  }
  return ERR_NONE;
}
