// What the plug-in tells the host about itself.
#pragma once

#include "bridges/ofx/OfxTypes.h"
#include "bridges/ofx/Properties.h"

namespace vantorel::ofx {

// The describe and describe-in-context actions. A Fault where the host refuses what the effect cannot do without.
void describe(EffectHandle descriptor);
void describeInContext(EffectHandle descriptor, const Properties& in);

}  // namespace vantorel::ofx
