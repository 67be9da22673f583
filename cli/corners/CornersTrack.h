// The four corners over the frames: from options, or from trackers' files.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/base/FrameRange.h"
#include "cli/corners/Corners.h"
#include "cli/corners/TrackOptions.h"
#include "host/Animation.h"

namespace vantorel::cli {

struct CornersTrack {
  CornerPositions still;                  // if there are no files
  std::optional<tracks::ReadTrack> read;  // the files' content
  tracks::ResolveOptions options;
};

// The names in an option's comma-separated list of files; a name with commas counts as one if such a file exists.
std::vector<std::string> trackFiles(const std::string& list);

// Reads the files; the rate is for clock times. Throws CommandError, naming file, line and field.
CornersTrack readCorners(const TrackOptions& options, const FrameRate& rate);

// The files' track in pixels of the output. Throws CommandError (file failure).
tracks::ResolvedTrack resolveCorners(const CornersTrack& track, host::Size layer, host::Size output);

// The track as the host's parameters. Throws CommandError for positions outside the 16.16 range: a bad argument for
// corners from options, a file failure for those from files.
host::AnimatedCorners toAnimation(const CornersTrack& track, host::Size layer, host::Size output,
                                  const FrameRate& rate);

// The part of the layer that the file specifies, in layer pixels; there must be one. Throws CommandError (file
// failure).
host::AnimatedCorners toSourceAnimation(const CornersTrack& track, host::Size layer, host::Size output,
                                        const FrameRate& rate);

// The positions in pixels of a layer. Throws CommandError (bad argument), naming the option, which is `prefix` and the
// corner's name: "--ul".
host::Corners toPixels(const CornerPositions& positions, host::Size layer, const char* prefix);

// Prints each note once, on standard error.
void tellNotes(const std::vector<std::string>& notes);

}  // namespace vantorel::cli
