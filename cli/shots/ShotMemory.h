// How many frames of a shot fit in memory at the same time.
#pragma once

#include <optional>

#include "cli/pictures/Picture.h"
#include "cli/shots/Shot.h"

namespace vantorel::cli {

// The heads of a frame's files; no plate without one.
struct FrameHeads {
  PictureInfo layer;
  std::optional<PictureInfo> plate;
};

// How many frames to work on at the same time, 1 and up: as many as there are threads, fewer where memory is short.
// Throws CommandError, naming the picture that takes most, when not even one fits.
int framesInFlight(const Shot& shot, const FrameHeads& heads);

}  // namespace vantorel::cli
