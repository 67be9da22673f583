#include "bridges/ofx/Placement.h"

#include <string>

#include "bridges/ofx/Names.h"

namespace vantorel::ofx {
namespace {

host::Corners inReach(const host::Corners& corners, bool from) {
  if (const auto corner = unreachable(corners)) {
    throw Fault{Status::BadValue, std::string(cornerLabel(from, *corner)) +
                                      ": it lies more than 32767 pixels from the source; move it closer, or press " +
                                      (from ? "Reset from corners" : "Reset corners")};
  }
  return corners;
}

}  // namespace

PointD renderScaleOf(const Properties& arguments) {
  const PointD scale = arguments.point(kPropRenderScale).value_or(PointD{1.0, 1.0});
  if (!isScale(scale.x) || !isScale(scale.y)) {
    throw Fault{Status::BadValue, "the host's render scale of " + std::to_string(scale.x) + " by " +
                                      std::to_string(scale.y) + " is not valid"};
  }
  return scale;
}

void Placement::apply(const ParameterValues& values, host::Instance* instance) const {
  orFault(instance->setCorners(inReach(plane().at(values.corners), false)));
  instance->clearSource();
  if (values.from) {
    orFault(instance->setSource(inReach(planeOf(source_scale).at(*values.from), true)));
  }
}

RectI Placement::neededFor(const RectI& window, const host::FrameOptions& options, host::Instance* instance) const {
  const auto part = instance->neededPart({frame.width(), frame.height()}, plane().at(window), options);
  orFault(part);
  return {frame.x1 + part->left, frame.y2 - part->bottom, frame.x1 + part->right, frame.y2 - part->top};
}

host::FrameOptions optionsOf(const ParameterValues& values) {
  host::FrameOptions options;
  options.quality = values.quality;
  options.edges = values.edges;
  options.samples = values.samples;
  options.canvas_independent = true;
  return options;
}

}  // namespace vantorel::ofx
