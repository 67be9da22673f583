#include "bench/quality/Layer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <stdexcept>

namespace vantorel::quality {

namespace {

constexpr float kWhite = 255.0F;
constexpr std::array kBarWidths = {1, 2, 3, 4, 6, 8, 12, 16};

template <typename Value>
Layer painted(host::Size size, const Value& value) {
  Layer layer{size, {}};
  layer.grey.reserve(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height));
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      layer.grey.push_back(value(x, y));
    }
  }
  return layer;
}

bool isOdd(int value, int width) {
  return value / width % 2 != 0;
}

template <typename Channel>
void fill(const Layer& layer, const host::ImageView& view, float scale) {
  for (int y = 0; y < layer.size.height; ++y) {
    auto* channel = reinterpret_cast<Channel*>(view.row(y));
    for (int x = 0; x < layer.size.width; ++x) {
      *channel++ = static_cast<Channel>(kWhite * scale);
      channel = std::fill_n(channel, 3, static_cast<Channel>(layer.at(x, y) * scale));
    }
  }
}

}  // namespace

Layer zonePlate(host::Size size) {
  const double middle_x = (size.width - 1) / 2.0;
  const double middle_y = (size.height - 1) / 2.0;
  const double phase_scale = std::numbers::pi / std::max(size.width, size.height);
  return painted(size, [=](int x, int y) {
    const double dx = x - middle_x;
    const double dy = y - middle_y;
    return static_cast<float>(std::round(127.5 + 127.5 * std::cos(phase_scale * (dx * dx + dy * dy))));
  });
}

Layer barsAndChecks(host::Size size) {
  constexpr int kBands = static_cast<int>(kBarWidths.size());
  return painted(size, [=](int x, int y) {
    const int width = kBarWidths[static_cast<std::size_t>(x * kBands / size.width)];
    const int third = y * 3 / size.height;
    const bool black = (third != 1 && isOdd(x, width)) != (third != 0 && isOdd(y, width));
    return black ? 0.0F : kWhite;
  });
}

Layer white(host::Size size) {
  return painted(size, [](int, int) { return kWhite; });
}

Layer checks(host::Size size, int side) {
  return painted(size, [=](int x, int y) { return isOdd(x, side) != isOdd(y, side) ? 0.0F : kWhite; });
}

host::Image imageOf(const Layer& layer, host::Depth depth) {
  host::Result<host::Image> image = host::Image::create(layer.size, depth);
  if (!image) {
    throw std::runtime_error(image.error().message);
  }
  switch (depth) {
    case host::Depth::Bits8:
      fill<std::uint8_t>(layer, image->view(), 1.0F);
      break;
    case host::Depth::Bits16:
      fill<std::uint16_t>(layer, image->view(), 257.0F);
      break;
    case host::Depth::Float:
      fill<float>(layer, image->view(), 1.0F / kWhite);
      break;
  }
  return std::move(*image);
}

}  // namespace vantorel::quality
