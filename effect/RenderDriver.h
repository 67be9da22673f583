// Rendering a frame: the handlers of both protocols and the one render body behind them.
#pragma once

#include <cstdint>

#include "support/PF_HostRecords.h"

// The plain protocol: the input is the layer parameter's world.
std::int32_t Render(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output);

// The two-phase protocol: the input is the layer checked out at pre-render, the output what the host checks out now.
// The first failing checkout is returned. A host that hands back no world gets 0, and nothing is drawn.
std::int32_t SmartRender(PF_InData* in_data, PF_OutData* out_data, PF_SmartRenderExtra* extra);

// Draws the input onto the quadrilateral of the corner parameters, by the renderer that suits it. Returns 0, or the
// first error of the corner points, the depth query, a suite or the host's iteration; rows already written stay.
//
// Outputs beyond 32767 pixels in a direction are drawn like any other.
std::int32_t DoRender(PF_InData* in_data, PF_OutData* out_data, PF_LayerDef* input, PF_LayerDef* output);
