// Finds and loads the command's own modules.
#pragma once

#include <string>

namespace vantorel::cli {

// The path of the module of that file name: beside the command, or in the install folder relative to it. Throws
// CommandError (file failure), with `remedy`, if there is none.
std::string findModule(const char* name, const char* remedy);

// The beginning of the table that each of the command's modules exports; the modules derive their own structs from it.
struct ModuleTable {
  const char* version;  // the module's version; if it is not the command's, the rest of the table may differ
};

// Loads the module of that file name and returns the result of its exported function `entry`, a `const ModuleTable*()`.
// The module stays loaded until the process ends. Throws CommandError (file failure), naming the module, if it cannot
// be loaded or has a different version.
const ModuleTable& loadOwnModule(const char* name, const char* entry);

}  // namespace vantorel::cli
