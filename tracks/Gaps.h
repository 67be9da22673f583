// Frames on which corners are missing.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tracks/CornerTrack.h"

namespace vantorel::tracks {

// The longest gap that is interpolated by default: about a second.
constexpr int kUsualLongestGap = 25;

// Makes every key complete: a missing corner is interpolated between the keys that have it, or held if it is missing at
// the track's start or end. A gap of more than `longest` frames throws ReadFault, naming corner and frames; so do
// frames without any key, unless the track is sparse and no longest gap was given. Returns notes for the user.
std::vector<std::string> fillGaps(CornerTrack& track, std::optional<int> longest, bool sparse);

}  // namespace vantorel::tracks
