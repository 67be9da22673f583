// The modules that belong to the command.
#pragma once

#include <string>

namespace vantorel::cli {

// The path of the module of that file name: beside the command, or where modules are installed, seen from there. Throws
// CommandError (file failure), which ends in `remedy`, when there is none.
std::string findModule(const char* name, const char* remedy);

// What a module of the command's own exports begins with; the module goes on as a struct that is derived from it.
struct ModuleTable {
  const char* version;  // the module's; that of the command, or what follows may differ
};

// Loads the module of that file name, which stays loaded until the process ends, and calls the function `entry` that it
// exports: a `const ModuleTable*()`, whose result lives as long. Throws CommandError (file failure) naming the module
// where it cannot be loaded or is that of another version.
const ModuleTable& loadOwnModule(const char* name, const char* entry);

}  // namespace vantorel::cli
