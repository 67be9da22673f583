// The four corners over the frames: from options, or from files that trackers wrote.
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
  CornerPositions still;                  // where there are no files
  std::optional<tracks::ReadTrack> read;  // what the files say
  tracks::ResolveOptions options;
};

// The names in a list of files as options give it: a name that holds commas is one if there is such a file.
std::vector<std::string> trackFiles(const std::string& list);

// Reads the files; the rate is that of clock times. Throws CommandError, naming file, line and field.
CornersTrack readCorners(const TrackOptions& options, const FrameRate& rate);

// The files' track in pixels of the output. Throws CommandError (file failure).
tracks::ResolvedTrack resolveCorners(const CornersTrack& track, host::Size layer, host::Size output);

// The track as the host's parameters. Throws CommandError for positions that 16.16 cannot hold: a bad argument for
// corners from options, a file failure for those from files.
host::AnimatedCorners toAnimation(const CornersTrack& track, host::Size layer, host::Size output,
                                  const FrameRate& rate);

// The part of the layer that the file names, in its pixels; there must be one. Throws CommandError (file failure).
host::AnimatedCorners toSourceAnimation(const CornersTrack& track, host::Size layer, host::Size output,
                                        const FrameRate& rate);

// The positions in pixels of a layer. Throws CommandError (bad argument), naming the option: `prefix` and the corner's
// name, as "--ul".
host::Corners toPixels(const CornerPositions& positions, host::Size layer, const char* prefix);

// Tells each note once, on standard error.
void tellNotes(const std::vector<std::string>& notes);

}  // namespace vantorel::cli
