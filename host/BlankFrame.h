// Frames that came out empty although there is something to see in them.
//
// A perspective map onto a quadrilateral is normalised by its weight at the upper left corner of the output. Where the
// horizon of the map runs exactly through that corner (say, two sides that meet in the output's first row) the weight
// is 0, and a module has no map to draw by. Seen from a corner that lies elsewhere the same quadrilateral has one.
#pragma once

#include "host/FrameProtocols.h"

namespace vantorel::host {

// Whether a frame that has been drawn is transparent throughout, with the corners' bounding box in the canvas and a
// layer that is not.
bool isUnexpectedlyBlank(const FrameState& frame, const Rect& canvas);

// Draws the frame again into `scratch`, a larger canvas with another corner, and copies it into the frame's output.
// `scratch` is kept for the next such frame.
Result<void> drawFromAnotherCorner(const FrameJob& job, const Rect& canvas, Image* scratch);

}  // namespace vantorel::host
