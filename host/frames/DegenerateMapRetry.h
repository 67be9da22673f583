// Detects and redraws frames that came out empty although they should show something.
//
// A module normalises its perspective map by the weight at the upper left corner of the output. If the map's horizon
// passes exactly through that corner (for example, if two sides meet in the output's first row), the weight is 0 and
// the module has no map to draw with. On a canvas that begins elsewhere the same quadrilateral does have a map.
#pragma once

#include "host/frames/FrameProtocols.h"

namespace vantorel::host {

// Whether a frame that was drawn row by row is entirely transparent although the layer is not and the corners' bounding
// box meets the canvas. Always false in checking mode, whose row guard covers only one canvas.
bool needsRetry(const FrameState& frame, const Rect& canvas);

// Redraws the frame on a larger canvas that begins elsewhere, and copies it into the frame's output. The canvas is kept
// in the frame's state for the next such frame.
Result<void> drawOnShiftedCanvas(const FrameJob& job, const Rect& canvas);

}  // namespace vantorel::host
