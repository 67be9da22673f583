// Frames that came out empty although there is something to see in them.
//
// A perspective map onto a quadrilateral is normalised by its weight at the upper left corner of the output. Where the
// horizon of the map runs exactly through that corner (say, two sides that meet in the output's first row) the weight
// is 0, and a module has no map to draw by. Seen from a corner that lies elsewhere the same quadrilateral has one.
#pragma once

#include "host/frames/FrameProtocols.h"

namespace vantorel::host {

// Whether a frame that was drawn row by row came out transparent throughout, with the corners' bounding box in the
// canvas and a layer that is not. Never in checking mode, whose guard watches one canvas alone.
bool needsRetry(const FrameState& frame, const Rect& canvas);

// Draws the frame again on a larger canvas with another corner, and copies it into the frame's output. The canvas is
// kept in the frame's state for the next such frame.
Result<void> drawOnShiftedCanvas(const FrameJob& job, const Rect& canvas);

}  // namespace vantorel::host
