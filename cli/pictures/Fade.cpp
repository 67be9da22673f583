#include "cli/pictures/Fade.h"

#include <tbb/parallel_for.h>

#include <algorithm>
#include <cstdint>

#include "cli/pictures/PixelConversion.h"

namespace vantorel::cli {

namespace {

template <typename Channel>
void multiplyPixel(Channel* pixel, double factor) {
  for (int c = 0; c < 4; ++c) {
    if constexpr (std::is_floating_point_v<Channel>) {
      pixel[c] *= static_cast<float>(factor);
    } else {
      pixel[c] = static_cast<Channel>(pixel[c] * factor + 0.5);
    }
  }
}

// Calls visit(pixel, x, y) for every pixel, rows side by side.
template <typename Channel, typename Visit>
void forPixels(const host::ImageView& picture, const Visit& visit) {
  tbb::parallel_for(0, picture.size.height, [&](int y) {
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

// The luminance of Rec. 709's primaries, 0 to 1; of a grey pixel exactly its value.
template <typename Channel>
double grey(const Channel* pixel) {
  const double green = pixel[1];
  return (green + 0.2126 * (pixel[0] - green) + 0.0722 * (pixel[2] - green)) / kOpaque<Channel>;
}

template <typename Channel>
double covered(const Channel* pixel, MatteChannel channel) {
  const double share = channel == MatteChannel::Alpha ? pixel[3] / double{kOpaque<Channel>} : grey(pixel);
  return share > 0.0 ? std::min(share, 1.0) : 0.0;  // what is not a number covers nothing
}

}  // namespace

void fade(const host::ImageView& picture, double opacity) {
  withChannelOf(picture.depth, [&](auto type) {
    using Channel = decltype(type);
    forPixels<Channel>(picture, [=](Channel* pixel, int, int) { multiplyPixel(pixel, opacity); });
  });
}

void holdOut(const host::ImageView& picture, const host::ConstImageView& matte, MatteChannel channel) {
  withChannelOf(picture.depth, [&](auto type) {
    using Channel = decltype(type);
    forPixels<Channel>(picture, [&](Channel* pixel, int x, int y) {
      multiplyPixel(pixel, 1.0 - covered(reinterpret_cast<const Channel*>(matte.pixel(x, y)), channel));
    });
  });
}

}  // namespace vantorel::cli
