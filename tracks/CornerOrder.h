// Which of a track's points is which corner.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "tracks/CornerTrack.h"

namespace vantorel::tracks {

// For each corner, in the order of Corner, which of the points as written it is.
using CornerOrder = std::array<std::size_t, kCornerCount>;

constexpr CornerOrder kAsWritten{0, 1, 2, 3};

// "ul,ur,ll,lr" in any order, which names what the points as written are, or "as-written"; nothing for other texts.
std::optional<CornerOrder> parseCornerOrder(std::string_view text);

// The order in which most of the complete quadrilaterals are convex and clockwise, as nearly upright as can be over the
// whole track. A track that is convex and clockwise as written, and upright as such on its first complete frame, stays;
// so does one that is convex on no frame in any order. Positions are pixels, y downwards.
CornerOrder bestOrder(const std::vector<CornerKey>& keys);

// Puts the points in that order.
void reorder(std::vector<CornerKey>& keys, const CornerOrder& order);

// "ur,ul,lr,ll": what the points as written turned out to be.
std::string orderText(const CornerOrder& order);

}  // namespace vantorel::tracks
