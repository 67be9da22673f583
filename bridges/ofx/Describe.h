// How the plug-in describes itself to the host.
#pragma once

#include "bridges/ofx/OfxTypes.h"
#include "bridges/ofx/Properties.h"

namespace vantorel::ofx {

// The describe and describe-in-context actions. A Fault if the host refuses something essential.
void describe(EffectHandle descriptor);
void describeInContext(EffectHandle descriptor, const Properties& in);

}  // namespace vantorel::ofx
