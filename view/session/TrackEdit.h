// Changes the keys in the text of a corners file and leaves the rest of the text unchanged.
#pragma once

#include <string>
#include <string_view>

#include "host/Image.h"
#include "tracks/CornerTrack.h"

namespace vantorel::view {

// Whether the text is the command's own JSON.
bool isJsonTrack(std::string_view text, const std::string& name);

// Whether the text is in the command's documented CSV or JSON format.
bool isEditable(std::string_view text, const std::string& name);

// The text with the track's keys, which are in pixels of the output. Keys with equal positions keep their text,
// comments and other columns or members stay with their keys, and keys that the track lacks are removed. `layer` is the
// size that percentages refer to. The text must be editable; throws CommandError, naming the file, if it cannot be
// parsed.
std::string editedTrack(std::string_view text, const std::string& name, const tracks::CornerTrack& track,
                        host::Size layer);

}  // namespace vantorel::view
