#include "tracks/CornerOrder.h"

#include <algorithm>

#include "tracks/Quadrilaterals.h"
#include "tracks/Text.h"

namespace vantorel::tracks {

namespace {

Quadrilateral arranged(const Quadrilateral& points, const CornerOrder& order) {
  return {points[order[0]], points[order[1]], points[order[2]], points[order[3]]};
}

// How far the right side is right of the left one and the lower side below the upper one, relative to the
// quadrilateral's size: from -2 to 2.
double uprightness(const Quadrilateral& q) {
  const double right = q[kUpperRight].x - q[kUpperLeft].x + q[kLowerRight].x - q[kLowerLeft].x;
  const double down = q[kLowerLeft].y - q[kUpperLeft].y + q[kLowerRight].y - q[kUpperRight].y;
  const double size = sizeOf(q);
  return size > 0.0 ? (right + down) / (2.0 * size) : 0.0;
}

// How well an order fits the track.
struct Standing {
  CornerOrder order{};
  std::size_t clockwise = 0;   // on how many keys it is convex and clockwise
  double upright = 0.0;        // the sum over these keys
  double upright_first = 0.0;  // on the first of them
};

Standing standingOf(const std::vector<CornerKey>& keys, const CornerOrder& order) {
  Standing standing{order};
  for (const CornerKey& key : keys) {
    const Quadrilateral q = arranged(key.points, order);
    if (key.complete() && isConvexClockwise(q)) {
      const double upright = uprightness(q);
      standing.upright += upright;
      standing.upright_first = standing.clockwise == 0 ? upright : standing.upright_first;
      ++standing.clockwise;
    }
  }
  return standing;
}

// The order rotated by one corner: the former upper left becomes the upper right.
CornerOrder turned(const CornerOrder& order) {
  CornerOrder result{};
  for (std::size_t i = 0; i < kCornerCount; ++i) {
    result[kAround[(i + 1) % kCornerCount]] = order[kAround[i]];
  }
  return result;
}

// The cycle of points that is clockwise on most keys, as one of its four orders.
Standing bestCycle(const std::vector<CornerKey>& keys) {
  // Every cycle once, with point 0 at the upper left, the written one first.
  constexpr std::array<CornerOrder, 6> kCycles{
      {{0, 1, 2, 3}, {0, 2, 1, 3}, {0, 1, 3, 2}, {0, 3, 1, 2}, {0, 2, 3, 1}, {0, 3, 2, 1}}};
  Standing best;
  for (const CornerOrder& cycle : kCycles) {
    const Standing standing = standingOf(keys, cycle);
    if (standing.clockwise > best.clockwise) {
      best = standing;
    }
  }
  return best;
}

}  // namespace

std::optional<CornerOrder> parseCornerOrder(std::string_view text) {
  if (text == "as-written") {
    return kAsWritten;
  }
  constexpr std::size_t kNone = kCornerCount;
  CornerOrder order{kNone, kNone, kNone, kNone};
  std::vector<std::string_view> names;
  splitWords(text, names, ",");
  for (std::size_t place = 0; place < names.size(); ++place) {
    const auto* const corner = std::find(kCornerNames.begin(), kCornerNames.end(), lowerCase(names[place]));
    if (corner == kCornerNames.end()) {
      return std::nullopt;
    }
    order[static_cast<std::size_t>(corner - kCornerNames.begin())] = place;
  }
  const bool all = std::find(order.begin(), order.end(), kNone) == order.end();
  return all && names.size() == kCornerCount ? std::optional(order) : std::nullopt;
}

CornerOrder bestOrder(const std::vector<CornerKey>& keys) {
  Standing best = bestCycle(keys);
  if (best.clockwise == 0) {
    return kAsWritten;
  }
  std::array<Standing, kCornerCount> turns;
  turns[0] = best;
  for (std::size_t t = 1; t < kCornerCount; ++t) {
    turns[t] = standingOf(keys, turned(turns[t - 1].order));
  }
  const auto most = [&](double Standing::*measure) {
    return std::max_element(turns.begin(), turns.end(),
                            [&](const Standing& a, const Standing& b) { return a.*measure < b.*measure; });
  };
  const bool starts_upright = most(&Standing::upright_first)->order == kAsWritten;
  return starts_upright ? kAsWritten : most(&Standing::upright)->order;
}

void reorder(std::vector<CornerKey>& keys, const CornerOrder& order) {
  if (order == kAsWritten) {
    return;
  }
  for (CornerKey& key : keys) {
    key.points = arranged(key.points, order);
    std::uint8_t present = 0;
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      present = static_cast<std::uint8_t>(present | (key.has(order[c]) ? 1u << c : 0u));
    }
    key.present = present;
  }
}

std::string orderText(const CornerOrder& order) {
  std::array<std::string_view, kCornerCount> names{};
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    names[order[c]] = kCornerNames[c];
  }
  std::string text;
  for (const std::string_view name : names) {
    text += text.empty() ? "" : ",";
    text += name;
  }
  return text;
}

}  // namespace vantorel::tracks
