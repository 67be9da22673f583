#include "host/ParameterServices.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "host/CallContext.h"

namespace vantorel::host {

namespace {

constexpr double kFixedOne = 65536.0;

const AnimatedPoint& pointOf(const AnimatedCorners& corners, std::int32_t index) {
  switch (index) {
    case 1:
      return corners.upper_left;
    case 2:
      return corners.upper_right;
    case 3:
      return corners.lower_left;
    default:
      return corners.lower_right;
  }
}

// The value of a parameter at a time, in pixels of the frame's resolution.
void fillValue(const FrameState& frame, std::int32_t index, double seconds, PF_ParamDef* out) {
  std::memset(out, 0, sizeof(*out));
  if (index == 0) {
    out->value.layer_world = frame.input;
    return;
  }
  const Point point = pointOf(*frame.corners, index).at(seconds);
  out->param_type = PARAM_TYPE_POINT;
  out->value.point.point_x = fixedFromPixels(point.x / frame.downsample);
  out->value.point.point_y = fixedFromPixels(point.y / frame.downsample);
}

std::int32_t checkoutParam(void* effect_ref, std::int32_t index, std::int32_t time, std::int32_t /*time_step*/,
                           std::uint32_t time_scale, PF_ParamDef* out) {
  CallContext* const context = contextOf(effect_ref);
  if (context == nullptr || context->frame == nullptr || index < 0 || index > kPointParameters || time_scale == 0 ||
      out == nullptr) {
    return kCodeBadArgument;
  }
  return guarded([&] {
    fillValue(*context->frame, index, static_cast<double>(time) / time_scale, out);
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
      info.default_percent = {point.point_default_x / kFixedOne, point.point_default_y / kFixedOne};
    }
    context->declared->push_back(info);
    return ERR_NONE;
  });
}

}  // namespace

void installParameterServices(PF_InData* in_data) {
  in_data->checkout_param = checkoutParam;
  in_data->checkin_param = checkinParam;
  in_data->add_param = addParam;
}

void fillParameters(FrameState* frame, const FrameTime& time) {
  const double seconds = static_cast<double>(time.time) / time.scale;
  for (std::size_t i = 0; i < frame->params.size(); ++i) {
    fillValue(*frame, static_cast<std::int32_t>(i), seconds, &frame->params[i]);
    frame->param_pointers[i] = &frame->params[i];
  }
}

std::int32_t fixedFromPixels(double pixels) {
  const double fixed = std::floor(pixels * kFixedOne + 0.5);
  if (!(fixed > static_cast<double>(std::numeric_limits<std::int32_t>::min()))) {
    return std::numeric_limits<std::int32_t>::min();
  }
  return static_cast<std::int32_t>(std::min(fixed, static_cast<double>(std::numeric_limits<std::int32_t>::max())));
}

}  // namespace vantorel::host
