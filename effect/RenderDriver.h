// Rendering a frame: the handlers of both protocols, and the renderer that they share.
#pragma once

#include <cstdint>

#include "support/PF_HostRecords.h"

// The plain protocol: the input is the layer parameter's world.
std::int32_t Render(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output);

// The two-phase protocol: the input is the layer checked out at pre-render, the output is checked out here. Returns the
// error of the first failing checkout. If the host hands back no world, nothing is drawn and the result is 0.
std::int32_t SmartRender(PF_InData* in_data, PF_OutData* out_data, PF_SmartRenderExtra* extra);

// Draws the input onto the quadrilateral of the corner parameters with the renderer chosen by UseBilinear(). Returns 0,
// or the first error of the corner points, the depth query, a suite or the host's iteration; rows that were already
// drawn stay.
//
// Outputs beyond 32767 pixels in a direction are drawn like any other.
std::int32_t DoRender(PF_InData* in_data, PF_OutData* out_data, PF_LayerDef* input, PF_LayerDef* output);
