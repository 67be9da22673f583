#include "host/frames/FrameParameters.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "support/FixedUnits.h"

namespace vantorel::host {

namespace {

Point scaled(const Point& point, const FrameState& frame) {
  return {point.x / frame.downsample, point.y / frame.downsample};
}

}  // namespace

void fillParameter(const FrameState& frame, std::int32_t index, double seconds, PF_ParamDef* out) {
  std::memset(out, 0, sizeof(*out));
  if (index == 0) {
    out->value.layer_world = frame.input;
    return;
  }
  const std::size_t corner = static_cast<std::size_t>(index) - 1;
  const Point point = frame.placed ? (*frame.placed)[corner] : scaled((*frame.corners)[corner].at(seconds), frame);
  out->param_type = PARAM_TYPE_POINT;
  out->value.point.point_x = fixedFromPixels(point.x);
  out->value.point.point_y = fixedFromPixels(point.y);
}

void fillParameters(FrameState* frame, const FrameTime& time) {
  const double seconds = static_cast<double>(time.time) / time.scale;
  for (std::size_t i = 0; i < frame->params.size(); ++i) {
    fillParameter(*frame, static_cast<std::int32_t>(i), seconds, &frame->params[i]);
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

tl::unexpected<Error> cornerOutOfReach() {
  return invalidArgument("canvas",
                         "a corner is 32768 pixels or more from its upper left corner, too far for a "
                         "quadrilateral that is not convex; use a nearer canvas");
}

}  // namespace vantorel::host
