// A picture of a track.
#pragma once

#include <string>

#include "tracks/CornerTrack.h"

namespace vantorel::tracks {

// An SVG document with the corners' paths over the picture (its frame drawn where `frame` is not zero) and, below,
// each corner's speed in pixels a frame. The track is in pixels, its keys complete. Long tracks are thinned out to a
// few thousand points a line; the largest speeds stay.
std::string plotSvg(const CornerTrack& track, Size frame);

}  // namespace vantorel::tracks
