// Where a track's corners are written: files, or standard output.
#pragma once

#include <string>
#include <vector>

#include "cli/commands/Commands.h"
#include "tracks/TrackFile.h"

namespace vantorel::cli {

struct CornersOutput {
  std::string path;                // "-" is standard output
  const tracks::Format* format{};  // null: a plot
  tracks::CornerList corners;      // empty: all four
};

// The requested outputs, determined before anything is read. Throws CommandError (bad argument) for an unknown format,
// for an output that is named twice, and for one of the track's own files unless it may be replaced.
std::vector<CornersOutput> planCornersOutputs(const CornersOptions& options);

// Whether one of them is standard output, to which nothing else may be written then.
bool takesStandardOutput(const std::vector<CornersOutput>& outputs);

// Writes all of them, or none if a format cannot represent the track. Throws CommandError.
void writeCornersOutputs(const std::vector<CornersOutput>& outputs, const tracks::CornerTrack& track, host::Size frame);

}  // namespace vantorel::cli
