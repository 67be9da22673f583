// From a track as a file has it to corners in the output's pixels.
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
  PictureSizes sizes;                 // of the output, at full resolution, and of the layer; zero if not known
  std::optional<double> first_frame;  // where the first key goes; empty: frames as the file counts them, from 1
  std::optional<CornerOrder> order;   // empty: repaired
  std::optional<int> longest_gap;     // in frames; empty: kUsualLongestGap, and none for formats with sparse keys
  double sigma = 0.0;                 // of smoothing, in frames; 0 is none
  double jump = 0.25;                 // how far a corner may move in a frame, as a share of the quadrilateral's size
};

struct ResolvedTrack {
  CornerTrack track;               // pixels of the output from the upper left, every key complete
  CornerOrder order = kAsWritten;  // how the points were put in order
  std::vector<std::string> notes;  // what was assumed, repaired and found, each to be reported once
};

// Source keys become pixels of the layer, whatever picture the corners' positions count by.
//
// Errors name file, line and corner: a size that is needed and not known, a gap that is too long, a position outside
// what the effect holds (-32768 to 32768 pixels), a source that is not convex, options out of their range.
host::Result<ResolvedTrack> resolveTrack(ReadTrack read, const ResolveOptions& options);

}  // namespace vantorel::tracks
