#include <cstring>

#include "host/callbacks/CallContext.h"
#include "host/callbacks/CallbackTables.h"
#include "host/frames/FrameParameters.h"

namespace vantorel::host {

namespace {

constexpr double kOnePercent = 65536.0;  // 16.16

std::int32_t checkoutParam(void* effect_ref, std::int32_t index, std::int32_t time, std::int32_t /*time_step*/,
                           std::uint32_t time_scale, PF_ParamDef* out) {
  CallContext* const context = contextOf(effect_ref);
  if (context == nullptr || context->frame == nullptr || index < 0 || index > static_cast<std::int32_t>(kCornerCount) ||
      time_scale == 0 || out == nullptr) {
    return kCodeBadArgument;
  }
  return guarded([&] {
    fillParameter(*context->frame, index, static_cast<double>(time) / time_scale, out);
    if (context->ledger != nullptr) {
      context->ledger->parameterCheckedOut(out, index);
    }
    return ERR_NONE;
  });
}

std::int32_t checkinParam(void* effect_ref, PF_ParamDef* param) {
  CallContext* const context = contextOf(effect_ref);
  if (context == nullptr || param == nullptr) {
    return kCodeBadArgument;
  }
  return guarded([&] {
    if (context->ledger != nullptr) {
      context->ledger->parameterCheckedIn(param);
    }
    return ERR_NONE;
  });
}

std::int32_t addParam(void* effect_ref, std::int32_t position, PF_ParamDef* definition) {
  constexpr std::int32_t kAfterTheLast = -1;
  CallContext* const context = contextOf(effect_ref);
  if (context == nullptr || context->declared == nullptr || position != kAfterTheLast || definition == nullptr) {
    return kCodeBadArgument;
  }
  return guarded([&] {
    ParameterInfo info;
    info.index = static_cast<int>(context->declared->size()) + 1;
    info.type = definition->param_type;
    info.name.assign(definition->name, strnlen(definition->name, sizeof(definition->name)));
    if (definition->param_type == PARAM_TYPE_POINT) {
      const PF_PointValue& point = definition->value.point;
      info.default_percent = {point.point_default_x / kOnePercent, point.point_default_y / kOnePercent};
    }
    context->declared->push_back(info);
    return ERR_NONE;
  });
}

}  // namespace

void installParameterCallbacks(PF_InData* in_data) {
  in_data->checkout_param = checkoutParam;
  in_data->checkin_param = checkinParam;
  in_data->add_param = addParam;
}

}  // namespace vantorel::host
