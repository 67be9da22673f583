// The effect's parameters as records with values.
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

// 16.16, rounded to nearest; what lies outside goes to the nearest end of the range.
std::int32_t fixedFromPixels(double pixels);

// What is said of a corner that 16.16 cannot hold on the canvas, for quadrilaterals that are scanned.
tl::unexpected<Error> cornerOutOfReach();

}  // namespace vantorel::host
