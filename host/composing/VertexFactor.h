// The resolution of the vertex layer that the bilinear path samples.
#pragma once

#include <span>

#include "host/composing/FramePlan.h"

namespace vantorel::host {

// The factor per axis by which the layer is enlarged to vertices (VertexLayer.h) for the moments that are drawn on the
// bilinear path; 0 if there are none.
//
// A factor of 2 is exact. Where the layer is hardly enlarged the factor is 1: means of neighbouring pixels are then no
// softer than the output's own pixels, and much faster. Factors above 2 are for enlargements so large that the effect's
// blending weights, multiples of 1/256, would show as steps.
int vertexFactorFor(std::span<const FramePlan> moments);

}  // namespace vantorel::host
