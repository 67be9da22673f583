// How long a frame takes.
#pragma once

#include "bench/quality/Renderer.h"

namespace vantorel::quality {

// Draws the frame and returns the processor time of drawing, in seconds: the median of as many runs as fit into half a
// second, but at least three, after a first run. If the first run takes longer than two seconds, its own time.
double drawingSeconds(const Frame& frame);

}  // namespace vantorel::quality
