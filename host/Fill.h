// Filling worlds with a colour.
#pragma once

#include "support/PF_HostRecords.h"

namespace vantorel::host {

// The `fill` callback: the colour is a pixel of the world's depth, null for transparent; a null rectangle is the whole
// world, any other is cut to it. kCodeBadArgument for a world that is none of the frame's.
std::int32_t fillWorld(void* effect_ref, const void* color, const M_LRect* rect, PF_LayerDef* world);

}  // namespace vantorel::host
