// How long a frame takes.
#pragma once

#include "bench/quality/Renderer.h"

namespace vantorel::quality {

// Draws the frame. Returns the processor seconds that drawing takes: the median of several times after a first one, as
// many as fit into half a second, at least three; but the first time alone where that is longer than two seconds.
double drawingSeconds(const Frame& frame);

}  // namespace vantorel::quality
