// Keyframes for the four corners, from JSON or CSV files.
#pragma once

#include <string>
#include <vector>

#include "cli/base/FrameRange.h"
#include "cli/corners/Corners.h"
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

// The track as the host's parameters for a layer of that size. Throws CommandError for percentages whose pixels 16.16
// cannot hold: a bad argument for corners from options, a file failure for those from a file.
host::AnimatedCorners toAnimation(const CornersTrack& track, host::Size layer, const FrameRate& rate);

}  // namespace vantorel::cli
