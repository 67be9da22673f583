// How much the layer is enlarged before it goes through the effect.
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

// The size of a layer that is so enlarged.
host::Size enlargedSize(host::Size layer, const Enlargement& by);

// What the corners ask for, which have keys at the same times: in an axis in which an edge, at any key, becomes more
// than twice as long as it is in the source, by default the layer's outline, the next whole number of times, at most 8.
Enlargement enlargementFor(const host::AnimatedCorners& corners, const std::optional<host::AnimatedCorners>& source,
                           host::Size layer);

// The greatest factors up to those with which a layer takes no more than so many bytes, and no side more than the
// effect can address.
Enlargement limited(Enlargement wanted, host::Size layer, host::Depth depth, double most_bytes);

}  // namespace vantorel::cli
