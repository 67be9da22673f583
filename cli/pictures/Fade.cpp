#include "cli/pictures/Fade.h"

#include <algorithm>

#include "cli/pictures/PixelVisit.h"

namespace vantorel::cli {

namespace {

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
