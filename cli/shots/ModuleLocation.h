// The effect module.
#pragma once

#include <memory>
#include <string>

#include "host/Module.h"

namespace vantorel::cli {

// Loads the effect module at `path`, or when that is empty the one beside the command or where it is installed, seen
// from there. Throws CommandError: a file failure when there is no such file, an effect failure when the file does not
// work, a bad argument when VANTOREL_SIMD names no instruction set of this machine.
std::shared_ptr<const host::Module> loadModule(const std::string& path);

}  // namespace vantorel::cli
