// Determines which files a shot reads and writes, and at which frame each of them is shown.
#pragma once

#include "cli/shots/Shot.h"

namespace vantorel::cli {

// Fills in the shot's frames, its files' names and its format, checked as far as possible without reading any. Throws
// CommandError (bad argument).
void planFiles(Shot& shot);

}  // namespace vantorel::cli
