// The records of the effect's parameter values.
#pragma once

#include <cstdint>

#include "host/Frame.h"
#include "host/frames/FrameState.h"
#include "support/PF_HostRecords.h"

namespace vantorel::host {

// The value of a parameter, 0 to kCornerCount, at a time: the input layer, or a point in pixels of the frame's
// resolution.
void fillParameter(const FrameState& frame, std::int32_t index, double seconds, PF_ParamDef* out);

// Fills the frame's own records with the values at its time.
void fillParameters(FrameState* frame, const FrameTime& time);

// Converts to 16.16, rounded to nearest and clamped to its range.
std::int32_t fixedFromPixels(double pixels);

// The error for a corner outside the 16.16 range on the canvas, for quadrilaterals drawn by the bilinear scan.
tl::unexpected<Error> cornerOutOfReach();

}  // namespace vantorel::host
