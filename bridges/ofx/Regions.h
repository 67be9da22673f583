// What the host asks before it renders a frame: where the picture is, which part of the source it needs, and whether
// the frame equals that of a clip.
#pragma once

#include "bridges/ofx/Effect.h"

namespace vantorel::ofx {

// Each fills the action's out-arguments and returns the action's status.
Status regionOfDefinition(const Effect& effect, const Properties& in, const Properties& out);
Status regionsOfInterest(Effect& effect, const Properties& in, const Properties& out);
Status identity(const Effect& effect, const Properties& in, const Properties& out);
Status clipPreferences(const Effect& effect, const Properties& out);

// Moves the corners, or the from-corners, to those of the source's frame, as one step in the host's undo history.
void resetCorners(const Effect& effect, bool from, Time time);

}  // namespace vantorel::ofx
