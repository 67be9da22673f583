// Resuming a shot: which frames are done, and why others have to be redone.
#pragma once

#include <cstdint>

#include "cli/shots/Shot.h"

namespace vantorel::cli {

enum class FrameState {
  Done,
  Missing,        // no output exists
  Older,          // than the layer, the plate, the matte or the corners file
  NoRecord,       // not written by this command
  OtherSettings,  // other options, formats or corners
  Damaged,        // its bytes have changed since it was written
};

// Why a frame in that state is rendered again: "older than the inputs". Empty for Done and Missing.
const char* reasonToRedo(FrameState state);

FrameState stateOf(const Shot& shot, std::int32_t frame);

// A hash of everything that a shot's pictures depend on, except the inputs' content; needs the module. `layer` is the
// size of the layer's first picture. Throws CommandError like resolveCorners().
std::uint64_t commonSettings(const Shot& shot, host::Size layer);

// The same for one frame, including the names of its inputs.
std::uint64_t settingsOf(const Shot& shot, std::int32_t frame);

}  // namespace vantorel::cli
