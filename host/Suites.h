// The suite service: named, versioned tables of functions.
#pragma once

#include <optional>

#include "host/Image.h"
#include "support/PF_HostRecords.h"

namespace vantorel::host {

struct CallContext;

// The service: the world suite 2, the float iteration suite 1 and the float sampling suite 1. It holds no state and
// lives as long as the program; a suite that it has not gives ERR_SUITE_UNAVAILABLE and a null pointer.
PF_SuiteProvider* suiteProvider();

// The depth of a world of the running frame, or nothing for one that is not known.
std::optional<Depth> depthOfWorld(const CallContext& context, const PF_LayerDef& world);

}  // namespace vantorel::host
