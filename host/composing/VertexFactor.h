// How finely the bilinear path's layer is taken.
#pragma once

#include <span>

#include "host/composing/FramePlan.h"

namespace vantorel::host {

// How many times a side the layer is enlarged to vertices (VertexLayer.h) for the moments that are drawn by the
// bilinear path; 0 when there is none.
//
// Twice loses nothing. A picture that the layer is not much enlarged for is taken at the layer's own size instead,
// whose means of neighbours are no softer than the picture may be, and far quicker. It is more than twice where the
// picture is so large that the effect's weights of 1/256 would show as steps.
int vertexFactorFor(std::span<const FramePlan> moments);

}  // namespace vantorel::host
