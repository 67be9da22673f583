// How much the layer is enlarged before it is passed to the effect.
#pragma once

#include <optional>

#include "host/Animation.h"
#include "host/Image.h"

namespace vantorel::cli {

// Whole factors for width and height, 1 and up.
struct Enlargement {
  int x = 1;
  int y = 1;
  bool operator==(const Enlargement&) const = default;
};

// The size of a layer enlarged by these factors.
host::Size enlargedSize(host::Size layer, const Enlargement& by);

// The enlargement that the corners call for: along an axis on which an edge, at any key, becomes more than twice as
// long as in the source (by default the layer's outline), the next whole factor, at most 8. All corners must have keys
// at the same times.
Enlargement enlargementFor(const host::AnimatedCorners& corners, const std::optional<host::AnimatedCorners>& source,
                           host::Size layer);

// The largest factors, up to the wanted ones, with which the layer takes at most `most_bytes` and no side is longer
// than the effect can address.
Enlargement limited(Enlargement wanted, host::Size layer, host::Depth depth, double most_bytes);

}  // namespace vantorel::cli
