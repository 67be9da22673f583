// Tracks evaluated between their keys.
#pragma once

#include "tracks/CornerTrack.h"

namespace vantorel::tracks {

// A corner as an animated point, made from the keys that have it; one frame counts as a second.
host::AnimatedPoint animated(const CornerTrack& track, std::size_t corner);

// The track with a key on every whole frame from its first key to its last; its own keys stay as they are. Throws
// ReadFault for a track over more than ten million frames. Keys must be complete.
CornerTrack withWholeFrames(const CornerTrack& track);

}  // namespace vantorel::tracks
