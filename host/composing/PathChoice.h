// Which of its renderers the effect draws a quadrilateral with.
#pragma once

#include "host/Animation.h"
#include "host/Frame.h"

namespace vantorel::host {

// The effect's rule, for a layer that fills its world: the perspective renderer draws strictly convex quadrilaterals
// that turn by more than about 8 degrees at every corner, the bilinear one all others. What to hand to the effect
// depends on it, so the host must know before it asks.
RenderPath pathOf(const Corners& corners);

}  // namespace vantorel::host
