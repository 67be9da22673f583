// The overlay in the host's viewer: the quadrilateral with handles to drag.
#pragma once

#include "bridges/ofx/OfxTypes.h"

namespace vantorel::ofx {

// The overlay's entry, for hosts that draw with OpenGL and for hosts with the draw suite.
Status interactEntry(const char* action, const void* handle, PropertySet in, PropertySet out);

// Forgets the overlays that the host has left behind.
void dropOverlays();

}  // namespace vantorel::ofx
