// The effect that is linked into a bridge, loaded once for the whole program.
#pragma once

#include <memory>

#include "host/Error.h"
#include "host/Module.h"

namespace vantorel::bridges {

// The module of the linked effect, set up by the first call and shared by all that hold it; set down when the last
// owner lets go, and set up again by the next call. Safe to call from several threads. Errors as of Module::fromEntry.
host::Result<std::shared_ptr<const host::Module>> embeddedModule();

}  // namespace vantorel::bridges
