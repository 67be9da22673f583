// The file of corners that the page loads and saves.
#pragma once

#include <string>

#include "cli/shots/Shot.h"

namespace vantorel::view {

// Why the page cannot save to the file of the options, as a message for people; empty where it can.
std::string reasonNotToSave(const cli::TrackOptions& options);

// Writes the track there, whole or not at all. Of a file that is there, comments, further columns and members, and the
// keys that have not changed stay as they are written. Throws CommandError.
void saveCorners(const cli::TrackOptions& options, const tracks::CornerTrack& track, host::Size layer);

}  // namespace vantorel::view
