#include "bench/Pictures.h"

#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <stdexcept>
#include <tuple>

namespace vantorel::bench {

namespace {

using host::Depth;
using host::Image;
using host::ImageView;
using host::Size;

class Store {
 public:
  // The image of that size and depth, and whether it is new.
  std::pair<ImageView, bool> get(Size size, Depth depth) {
    Image& image = images_[{size.width, size.height, depth}];
    const bool is_new = image.empty();
    if (is_new) {
      host::Result<Image> created = Image::create(size, depth);
      if (!created) {
        throw std::runtime_error(created.error().message);
      }
      image = std::move(*created);
    }
    return {image.view(), is_new};
  }

 private:
  std::map<std::tuple<int, int, Depth>, Image> images_;
};

// The colour at a pixel, 0 to 1; alpha comes first.
std::array<float, 4> colourAt(int x, int y) {
  const auto wave = [](double phase) { return 0.5F + 0.4F * std::sin(static_cast<float>(phase)); };
  return {1.0F, wave(x * 0.031 + y * 0.017), wave(x * 0.4) * wave(y * 0.35), wave(y * 0.013 - x * 0.6)};
}

template <typename Channel>
void paint(const ImageView& view, float white, float rounding) {
  for (int y = 0; y < view.size.height; ++y) {
    auto* channel = reinterpret_cast<Channel*>(view.row(y));
    for (int x = 0; x < view.size.width; ++x) {
      for (const float value : colourAt(x, y)) {
        *channel++ = static_cast<Channel>(value * white + rounding);
      }
    }
  }
}

}  // namespace

host::ConstImageView picture(Size size, Depth depth) {
  static Store store;
  const auto [view, is_new] = store.get(size, depth);
  if (is_new) {
    switch (depth) {
      case Depth::Bits8:
        paint<std::uint8_t>(view, 255.0F, 0.5F);
        break;
      case Depth::Bits16:
        paint<std::uint16_t>(view, 65535.0F, 0.5F);
        break;
      case Depth::Float:
        paint<float>(view, 1.0F, 0.0F);
        break;
    }
  }
  return asConst(view);
}

ImageView canvas(Size size, Depth depth) {
  static Store store;
  const auto [view, is_new] = store.get(size, depth);
  if (is_new) {
    for (int y = 0; y < size.height; ++y) {
      std::memset(view.row(y), 0, static_cast<std::size_t>(size.width) * bytesPerPixel(depth));
    }
  }
  return view;
}

void preparePictures(const Workload& workload, Depth depth) {
  picture(workload.layer, depth);
  canvas(workload.canvas, depth);
}

}  // namespace vantorel::bench
