// Work on every pixel of a picture of any depth.
#pragma once

#include <cstdint>

#include "cli/base/Rows.h"
#include "cli/pictures/PixelConversion.h"
#include "host/Image.h"

namespace vantorel::cli {

// Integer channels round to nearest; `factor` is 0 to 1.
template <typename Channel>
void multiplyPixel(Channel* pixel, double factor) {
  for (int c = 0; c < 4; ++c) {
    if constexpr (std::is_floating_point_v<Channel>) {
      pixel[c] *= static_cast<float>(factor);
    } else {
      const double raised = pixel[c] * factor + 0.5;
      pixel[c] = static_cast<Channel>(raised);
    }
  }
}

// Calls visit(pixel, x, y) for every pixel, rows side by side.
template <typename Channel, typename Visit>
void forPixels(const host::ImageView& picture, const Visit& visit) {
  forRows(picture.size.height, [&](int y) {
    auto* pixel = reinterpret_cast<Channel*>(picture.row(y));
    for (int x = 0; x < picture.size.width; ++x, pixel += 4) {
      visit(pixel, x, y);
    }
  });
}

// Calls visit with a channel of the depth's type.
template <typename Visit>
void withChannelOf(host::Depth depth, const Visit& visit) {
  switch (depth) {
    case host::Depth::Bits8:
      return visit(std::uint8_t{});
    case host::Depth::Bits16:
      return visit(std::uint16_t{});
    case host::Depth::Float:
      return visit(float{});
  }
}

}  // namespace vantorel::cli
