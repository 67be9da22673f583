#include "host/composing/Accumulate.h"

#include <cstdint>
#include <type_traits>

namespace vantorel::host {

namespace {

constexpr int kChannels = 4;

template <typename Channel>
void add(const ImageView& sums, const ConstImageView& picture) {
  for (int y = 0; y < picture.size.height; ++y) {
    const auto* const from = reinterpret_cast<const Channel*>(picture.row(y));
    auto* const to = reinterpret_cast<float*>(sums.row(y));
    for (int i = 0; i < picture.size.width * kChannels; ++i) {
      to[i] += static_cast<float>(from[i]);
    }
  }
}

template <typename Channel>
void mean(const ConstImageView& sums, float count, const ImageView& picture) {
  for (int y = 0; y < picture.size.height; ++y) {
    const auto* const from = reinterpret_cast<const float*>(sums.row(y));
    auto* const to = reinterpret_cast<Channel*>(picture.row(y));
    for (int i = 0; i < picture.size.width * kChannels; ++i) {
      const float value = from[i] / count;
      to[i] = static_cast<Channel>(std::is_floating_point_v<Channel> ? value : value + 0.5F);
    }
  }
}

}  // namespace

void addTo(const ImageView& sums, const ConstImageView& picture) {
  switch (picture.depth) {
    case Depth::Bits8:
      return add<std::uint8_t>(sums, picture);
    case Depth::Bits16:
      return add<std::uint16_t>(sums, picture);
    case Depth::Float:
      return add<float>(sums, picture);
  }
}

void meanOf(const ConstImageView& sums, std::size_t count, const ImageView& picture) {
  switch (picture.depth) {
    case Depth::Bits8:
      return mean<std::uint8_t>(sums, static_cast<float>(count), picture);
    case Depth::Bits16:
      return mean<std::uint16_t>(sums, static_cast<float>(count), picture);
    case Depth::Float:
      return mean<float>(sums, static_cast<float>(count), picture);
  }
}

}  // namespace vantorel::host
