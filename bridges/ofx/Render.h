// Draws a window of a frame.
#pragma once

#include "bridges/ofx/Effect.h"

namespace vantorel::ofx {

// The render action: fills the part of the window that lies in the output's image. A Fault says why it cannot. Several
// windows of an instance may be drawn at once.
void render(Effect& effect, const Properties& arguments);

}  // namespace vantorel::ofx
