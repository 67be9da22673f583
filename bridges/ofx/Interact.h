// The overlay in the host's viewer: the quadrilateral with handles to drag.
#pragma once

#include "bridges/ofx/OfxTypes.h"

namespace vantorel::ofx {

// The overlay's own entry, for both of the interface's ways of drawing.
Status interactEntry(const char* action, const void* handle, PropertySet in, PropertySet out);

// Forgets the overlays that the host has not destroyed.
void dropOverlays();

}  // namespace vantorel::ofx
