#include "bridges/ofx/Placement.h"

namespace vantorel::ofx {

void Placement::apply(const ParameterValues& values, host::Instance* instance) const {
  orFault(instance->setCorners(plane().at(values.corners)));
  instance->clearSource();
  if (values.from) {
    orFault(instance->setSource(planeOf(source_scale).at(*values.from)));
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
