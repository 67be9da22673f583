// Tracks whose points are not the layer's own corners.
#pragma once

#include "tracks/CornerTrack.h"

namespace vantorel::tracks {

// Whether the source corners are the layer's own, whatever its size.
bool isWholeLayer(const SourceCorners& corners);

// Replaces the places of the track's source corners by those of the layer's own, and forgets the source corners.
// Positions are pixels from the upper left, source corners as the file has them, in the track's conventions. Throws
// ReadFault where the layer's size is needed and is zero, where source corners or positions make no quadrilateral, or
// where a corner of the layer is beyond the horizon. Keys must be complete.
void applySourceCorners(CornerTrack& track, Size layer);

}  // namespace vantorel::tracks
