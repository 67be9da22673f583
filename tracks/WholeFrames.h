// Keys on every frame.
#pragma once

#include "tracks/CornerTrack.h"

namespace vantorel::tracks {

// The corners between two keys, both complete, at a frame between theirs.
Quadrilateral between(const CornerKey& before, const CornerKey& after, double frame, host::Interpolation interpolation);

// The track with a key on every whole frame from its first key to its last; its own keys stay as they are. Throws
// ReadFault for a track over more than ten million frames. Keys must be complete.
CornerTrack withWholeFrames(const CornerTrack& track);

}  // namespace vantorel::tracks
