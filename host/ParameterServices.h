// The callbacks about parameters: declaring them, and reading their values at a time.
#pragma once

#include "host/FrameState.h"
#include "host/Instance.h"
#include "support/PF_HostRecords.h"

namespace vantorel::host {

// Enters the three callbacks into the record.
void installParameterServices(PF_InData* in_data);

// Fills the frame's parameter records with the values at its time.
void fillParameters(FrameState* frame, const FrameTime& time);

// 16.16, rounded to nearest; what lies outside goes to the nearest end of the range.
std::int32_t fixedFromPixels(double pixels);

}  // namespace vantorel::host
