// Predicts which renderer the effect will use for a quadrilateral.
#pragma once

#include "host/Animation.h"
#include "host/Frame.h"

namespace vantorel::host {

// The effect's rule, for a layer that fills its world: the perspective renderer draws strictly convex quadrilaterals
// that turn by more than about 8 degrees at every corner, the bilinear one all others. The host must know this in
// advance, since the input it prepares for the effect depends on it.
RenderPath pathOf(const Corners& corners);

}  // namespace vantorel::host
