// What the host asks about a frame before it renders one: where there is something to see, what is needed for it, and
// whether it is another clip's frame.
#pragma once

#include "bridges/ofx/Effect.h"

namespace vantorel::ofx {

// Each fills the action's out-arguments and returns the action's status.
Status regionOfDefinition(const Effect& effect, const Properties& in, const Properties& out);
Status regionsOfInterest(Effect& effect, const Properties& in, const Properties& out);
Status identity(const Effect& effect, const Properties& in, const Properties& out);
Status clipPreferences(const Effect& effect, const Properties& out);

// Puts the corners, or the from-corners, onto the source's outline, as one step of the host's undo.
void resetCorners(const Effect& effect, bool from, Time time);

}  // namespace vantorel::ofx
