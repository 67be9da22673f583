// The test layers: opaque and grey, so that one number per pixel is enough.
#pragma once

#include <vector>

#include "host/Image.h"

namespace vantorel::quality {

struct Layer {
  host::Size size;
  std::vector<float> grey;  // rows from the top, whole numbers from 0 to 255

  float at(int x, int y) const {
    return grey[static_cast<std::size_t>(y) * static_cast<std::size_t>(size.width) + static_cast<std::size_t>(x)];
  }
};

// Concentric rings, whose frequency rises from 0 to half a cycle per pixel at the nearer pair of borders, and higher in
// the corners.
Layer zonePlate(host::Size size);

// Upright bars in the upper third, level bars in the middle one and checks in the lower one, black and white; each
// third in eight bands that are 1, 2, 3, 4, 6, 8, 12 and 16 pixels wide a bar.
Layer barsAndChecks(host::Size size);

Layer white(host::Size size);

// Black and white squares of `side` pixels, white in the upper left corner.
Layer checks(host::Size size, int side);

// The layer in the host's form: four channels, alpha first. Throws std::runtime_error if it cannot be allocated.
host::Image imageOf(const Layer& layer, host::Depth depth);

}  // namespace vantorel::quality
