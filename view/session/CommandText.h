// The command line that renders what the page shows.
#pragma once

#include <cstdint>
#include <string>

#include "cli/commands/Commands.h"
#include "tracks/CornerTrack.h"

namespace vantorel::view {

// "vantorel render ...", for a POSIX shell: with the corners file if there is one (which must be saved first) or if
// there is more than one key, else with the corners themselves. `frame` is the frame shown when no range was given.
std::string commandText(const cli::ViewOptions& options, const tracks::CornerTrack& track, std::int32_t frame);

// Whether the file reader would keep the corners' order, rather than rearranging it.
bool isReadAsWritten(const tracks::CornerTrack& track);

}  // namespace vantorel::view
