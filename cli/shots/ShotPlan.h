// Works out a shot from what was asked for.
#pragma once

#include "cli/shots/Shot.h"

namespace vantorel::cli {

// Checks everything that can be checked before rendering, and reads the heads of the first frame's files (of the first
// frame whose files can be read, where it is to keep going). Without a name of an output none is planned: the shot has
// no format, and its frames can be composed but not written. `corners` take the place of those of the options. Throws
// CommandError.
Shot planShot(const RenderOptions& options, std::optional<CornersTrack> corners = std::nullopt);

}  // namespace vantorel::cli
