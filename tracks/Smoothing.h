// Smoothing a track, and finding where it jumps.
#pragma once

#include <string>
#include <vector>

#include "tracks/CornerTrack.h"

namespace vantorel::tracks {

constexpr double kLargestSigma = 100.0;  // in frames

// Smooths every corner with a Gaussian over frames; sigma is in frames, above 0 and at most kLargestSigma. The window
// narrows towards the first and the last key, which keep their positions. Keys must be complete. Time is linear in the
// keys: at most 3 * kLargestSigma keys on each side are used.
void smooth(std::vector<CornerKey>& keys, double sigma);

// The frames at which a corner has moved, within one frame, by more than `share` of the quadrilateral's size. Moves
// between keys more than a frame apart are not jumps.
std::vector<double> jumps(const std::vector<CornerKey>& keys, double share);

}  // namespace vantorel::tracks
