// The callbacks of the two-phase protocol: which pixels the module will need, and handing them over.
#pragma once

#include "support/PF_HostRecords.h"

namespace vantorel::host {

// The tables; they hold no state and live as long as the program.
PF_PreRenderCallbacks* preRenderCallbacks();
PF_SmartRenderCallbacks* smartRenderCallbacks();

}  // namespace vantorel::host
