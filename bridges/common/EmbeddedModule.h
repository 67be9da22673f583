// The effect that is linked into a bridge; all instances share it.
#pragma once

#include <memory>

#include "host/Error.h"
#include "host/Module.h"

namespace vantorel::bridges {

// The module of the linked effect. The first call sets it up; when its last owner releases it, it is set down, and the
// next call sets it up again. Thread-safe. Errors as for Module::fromEntry.
host::Result<std::shared_ptr<const host::Module>> embeddedModule();

}  // namespace vantorel::bridges
