// Handles tracks whose points are not the layer's own corners.
#pragma once

#include "tracks/CornerTrack.h"

namespace vantorel::tracks {

// Whether the source corners are the layer's own corners, for a layer of any size.
bool isWholeLayer(const SourceCorners& corners);

// Replaces the positions of the track's source corners by those of the layer's own corners, and removes the source
// corners. Positions are pixels from the upper left; source corners are in the track's conventions, as in the file.
// Throws ReadFault if the layer's size is needed and zero, if source corners or positions do not form a quadrilateral,
// or if a corner of the layer is beyond the horizon. Keys must be complete.
void applySourceCorners(CornerTrack& track, Size layer);

}  // namespace vantorel::tracks
