// Smoothing a track, and finding where it jumps.
#pragma once

#include <string>
#include <vector>

#include "tracks/CornerTrack.h"

namespace vantorel::tracks {

constexpr double kLargestSigma = 100.0;  // in frames

// Averages every corner with a Gaussian over frames, sigma in frames, above 0 and at most kLargestSigma. The window
// narrows towards the first and the last key, which keep their positions. Keys must be complete. Time is linear in the
// keys: of each side at most 3 kLargestSigma keys count.
void smooth(std::vector<CornerKey>& keys, double sigma);

// The frames to which a corner moves by more than `share` of the quadrilateral's size within a frame. Keys further
// apart than a frame are motion, whatever is between them.
std::vector<double> jumps(const std::vector<CornerKey>& keys, double share);

}  // namespace vantorel::tracks
