// Plans a shot from its options.
#pragma once

#include "cli/shots/Shot.h"

namespace vantorel::cli {

// Checks everything that can be checked before rendering, and reads the headers of the first frame's files (with
// --keep-going, of the first frame whose files can be read). If no output is named, the shot has no format, and its
// frames can be composed but not written. `corners` replace those of the options. Throws CommandError.
Shot planShot(const RenderOptions& options, std::optional<CornersTrack> corners = std::nullopt);

}  // namespace vantorel::cli
