// Measures where a picture's black-to-white edges are.
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
// the area between picture and truth around the edge, divided by its height. An edge extends half way to its
// neighbours. It is measured if the truth is completely black and white at its ends, also in the lines within a quarter
// of a layer pixel, and if it is more than a layer pixel away from places where the outline runs along the line: there
// an edge that fades out is not displaced. `layer_pixel` is a layer pixel's side in canvas pixels.
EdgePlacement edgePlacement(const host::ConstImageView& picture, const Truth& truth, std::size_t layer,
                            int layer_pixel);

}  // namespace vantorel::quality
