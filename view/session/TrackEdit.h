// Changing the keys in the text of a corner file, and nothing else of it.
#pragma once

#include <string>
#include <string_view>

#include "host/Image.h"
#include "tracks/CornerTrack.h"

namespace vantorel::view {

// Whether the text is the command's own JSON.
bool isJsonTrack(std::string_view text, const std::string& name);

// Whether the text is CSV or JSON as the command documents them.
bool isEditable(std::string_view text, const std::string& name);

// The text with the keys of the track, which are pixels of the output. Keys that say the same already stay as they are
// written, comments and further columns or members stay with theirs, and keys that the track lacks go. `layer` is the
// size that percent are of. The text must be editable; throws CommandError, naming the file, where it cannot be read.
std::string editedTrack(std::string_view text, const std::string& name, const tracks::CornerTrack& track,
                        host::Size layer);

}  // namespace vantorel::view
