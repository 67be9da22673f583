// Where a picture's black-to-white edges land.
#pragma once

#include <cstddef>

#include "bench/quality/Truth.h"
#include "host/Image.h"

namespace vantorel::quality {

struct EdgePlacement {
  double largest = 0;     // pixels, along the row or column
  std::size_t edges = 0;  // how many were measured
};

// The displacement of each edge along each row and column, of an 8-bit picture of a black and white layer, alpha first:
// the area between picture and truth around the edge, divided by its height. An edge reaches half way to its
// neighbours; those count at both ends of which the truth is wholly black and white.
EdgePlacement edgePlacement(const host::ConstImageView& picture, const Truth& truth, std::size_t layer);

}  // namespace vantorel::quality
