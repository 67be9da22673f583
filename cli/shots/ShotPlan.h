// Works out a shot from what was asked for.
#pragma once

#include "cli/shots/Shot.h"

namespace vantorel::cli {

// Checks everything that can be checked before rendering, and reads the heads of the first frame's files (of the first
// frame whose files can be read, where it is to keep going). Throws CommandError.
Shot planShot(const RenderOptions& options);

}  // namespace vantorel::cli
