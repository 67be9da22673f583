// How many frames of a shot fit into memory at the same time.
#pragma once

#include <optional>

#include "cli/pictures/Picture.h"
#include "cli/shots/Shot.h"

namespace vantorel::cli {

// The headers of a frame's files; plate and matte are optional.
struct FrameHeads {
  PictureInfo layer;
  std::optional<PictureInfo> plate;
  std::optional<PictureInfo> matte;
};

// How many frames to work on at the same time, 1 or more: as many as there are threads, or fewer if memory is short.
// Throws CommandError, naming the largest picture, if not even one fits.
int framesInFlight(const Shot& shot, const FrameHeads& heads);

}  // namespace vantorel::cli
