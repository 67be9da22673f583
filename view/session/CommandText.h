// The command that does what the page shows.
#pragma once

#include <cstdint>
#include <string>

#include "cli/commands/Commands.h"
#include "tracks/CornerTrack.h"

namespace vantorel::view {

// "vantorel render ...", for a POSIX shell: with the file of corners where there is one (to be saved first) or more
// than one key, else with the corners themselves. `frame` is the one that a still shows.
std::string commandText(const cli::ViewOptions& options, const tracks::CornerTrack& track, std::int32_t frame);

// Whether the reader of files leaves each corner its name, rather than putting it where it seems to belong.
bool isReadAsWritten(const tracks::CornerTrack& track);

}  // namespace vantorel::view
