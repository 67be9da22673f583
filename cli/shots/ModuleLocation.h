// Finds and loads the effect module.
#pragma once

#include <memory>
#include <string>

#include "host/Module.h"

namespace vantorel::cli {

// Loads the effect module at `path` or, if that is empty, the one beside the command or in the install folder relative
// to it. Throws CommandError: a file failure if there is no such file, an effect failure if the module does not work, a
// bad argument if VANTOREL_SIMD names an instruction set that this machine does not have.
std::shared_ptr<const host::Module> loadModule(const std::string& path);

}  // namespace vantorel::cli
