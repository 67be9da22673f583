// Where a track's corners are written: files, or standard output.
#pragma once

#include <string>
#include <vector>

#include "cli/commands/Commands.h"
#include "tracks/TrackFile.h"

namespace vantorel::cli {

struct CornersOutput {
  std::string path;                // "-" is standard output
  const tracks::Format* format{};  // none: a plot
  tracks::CornerList corners;      // empty: all four
};

// What the options ask for, known before anything is read. Throws CommandError (bad argument) for a format that is not
// told, for an output that is named twice, and for one that is a file of the track itself unless it may be replaced.
std::vector<CornersOutput> planCornersOutputs(const CornersOptions& options);

// True where one of them is standard output, which then carries nothing else.
bool takesStandardOutput(const std::vector<CornersOutput>& outputs);

// Writes all of them, or none where the track does not fit a format. Throws CommandError.
void writeCornersOutputs(const std::vector<CornersOutput>& outputs, const tracks::CornerTrack& track, host::Size frame);

}  // namespace vantorel::cli
