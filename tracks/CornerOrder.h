// Finds out which of a track's points is which corner.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "tracks/CornerTrack.h"

namespace vantorel::tracks {

// For each corner, in the order of Corner, the index of its point as written.
using CornerOrder = std::array<std::size_t, kCornerCount>;

constexpr CornerOrder kAsWritten{0, 1, 2, 3};

// Parses "ul,ur,ll,lr" in any order, which names the points as written, or "as-written"; empty for other texts.
std::optional<CornerOrder> parseCornerOrder(std::string_view text);

// The order in which most of the complete quadrilaterals are convex and clockwise and, among those, the one that is
// most upright over the whole track. The written order is kept if it is convex and clockwise, and upright on the first
// complete frame; also if no order is convex on any frame. Positions are pixels, y downwards.
CornerOrder bestOrder(const std::vector<CornerKey>& keys);

// Puts the points in that order.
void reorder(std::vector<CornerKey>& keys, const CornerOrder& order);

// The corners of the points as written: "ur,ul,lr,ll".
std::string orderText(const CornerOrder& order);

}  // namespace vantorel::tracks
