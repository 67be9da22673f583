// Keyframes for the four corners, from JSON or CSV files.
#pragma once

#include <string>
#include <vector>

#include "cli/CornersArgument.h"
#include "cli/FrameRange.h"
#include "host/Animation.h"

namespace vantorel::cli {

struct CornersKey {
  double frame = 0.0;  // may lie between frames
  CornerPositions corners;
};

// The corners over the frames: at least one key.
struct CornersTrack {
  std::string source;  // the file, as errors name it; empty for corners from options
  std::vector<CornersKey> keys;
  host::Interpolation interpolation = host::Interpolation::Linear;
};

// Reads a file whose name ends in .json or .csv. Throws CommandError, naming file, line and field.
CornersTrack readCorners(const std::string& path);

// The formats themselves; `name` is what errors name.
CornersTrack parseCornersJson(const std::string& text, const std::string& name);
CornersTrack parseCornersCsv(const std::string& text, const std::string& name);

// The track as the host's parameters for a layer of that size. Throws CommandError for positions that 16.16 cannot
// hold.
host::AnimatedCorners toAnimation(const CornersTrack& track, host::Size layer, const FrameRate& rate);

}  // namespace vantorel::cli
