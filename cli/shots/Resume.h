// Resuming a shot: which frames are done, and why others are not.
#pragma once

#include <cstdint>

#include "cli/shots/Shot.h"

namespace vantorel::cli {

enum class FrameState {
  Done,
  Missing,        // no output exists
  Older,          // than the layer, the plate or the file of corners
  NoRecord,       // not written by this command
  OtherSettings,  // other options, formats or corners
  Damaged,        // its bytes are not those that were written
};

// Says why a frame in that state is rendered again: "older than the inputs". Empty for Done and Missing.
const char* reasonToRedo(FrameState state);

FrameState stateOf(const Shot& shot, std::int32_t frame);

// A hash of all that the pictures of a shot depend on but their inputs; needs the module. `layer` is the size of the
// layer's first picture. Throws CommandError as resolveCorners() does.
std::uint64_t commonSettings(const Shot& shot, host::Size layer);

// The same for one frame, with the names of its inputs.
std::uint64_t settingsOf(const Shot& shot, std::int32_t frame);

}  // namespace vantorel::cli
