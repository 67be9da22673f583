// Converts a track as read from a file to corners in the output's pixels.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/Error.h"
#include "tracks/CornerOrder.h"
#include "tracks/TrackFile.h"

namespace vantorel::tracks {

struct ResolveOptions {
  Conventions given;                  // overrides what the format says
  PictureSizes sizes;                 // of the output, at full resolution, and of the layer; zero if unknown
  std::optional<double> first_frame;  // the frame of the first key; empty: the file's own frame numbers, from 1
  std::optional<CornerOrder> order;   // empty: detected and repaired
  std::optional<int> longest_gap;     // in frames; empty: kUsualLongestGap, or no limit for formats with sparse keys
  double sigma = 0.0;                 // of smoothing, in frames; 0 for none
  double jump = 0.25;                 // how far a corner may move in a frame, as a fraction of the quadrilateral's size
};

struct ResolvedTrack {
  CornerTrack track;               // in pixels of the output from the upper left; every key is complete
  CornerOrder order = kAsWritten;  // how the points were ordered
  std::vector<std::string> notes;  // what was assumed, repaired and found, each to be reported once
};

// Source keys become pixels of the layer, whichever picture the corners' positions refer to.
//
// Errors name file, line and corner: a size that is needed and not known, a gap that is too long, a position outside
// what the effect holds (-32768 to 32768 pixels), a source that is not convex, options out of their range.
host::Result<ResolvedTrack> resolveTrack(ReadTrack read, const ResolveOptions& options);

}  // namespace vantorel::tracks
