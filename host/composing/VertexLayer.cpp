#include "host/composing/VertexLayer.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

namespace vantorel::host {

namespace {

constexpr int kChannels = 4;

template <typename Channel>
Channel mean(Channel a, Channel b) {
  if constexpr (std::is_floating_point_v<Channel>) {
    return (a + b) * Channel{0.5};
  } else {
    return static_cast<Channel>((std::uint32_t{a} + b + 1U) / 2U);
  }
}

template <typename Channel>
Channel mean(Channel a, Channel b, Channel c, Channel d) {
  if constexpr (std::is_floating_point_v<Channel>) {
    return (a + b + c + d) * Channel{0.25};
  } else {
    return static_cast<Channel>((std::uint32_t{a} + b + c + d + 2U) / 4U);
  }
}

// One row of the enlarged layer: that of the layer's row `lower` when both are the same, else the border above it.
template <typename Channel>
void enlargeRow(const Channel* upper, const Channel* lower, int width, Channel* out) {
  for (int x = 0; x < width; ++x) {
    const int here = x * kChannels;
    const int before = std::max(x - 1, 0) * kChannels;
    for (int c = 0; c < kChannels; ++c) {
      out[c] = upper == lower ? mean(lower[before + c], lower[here + c])
                              : mean(upper[before + c], upper[here + c], lower[before + c], lower[here + c]);
      out[kChannels + c] = upper == lower ? lower[here + c] : mean(upper[here + c], lower[here + c]);
    }
    out += 2 * kChannels;
  }
}

template <typename Channel>
void enlarge(const ConstImageView& layer, const ImageView& enlarged) {
  const auto row = [&](int y) { return reinterpret_cast<const Channel*>(layer.row(y)); };
  for (int y = 0; y < enlarged.size.height; ++y) {
    const Channel* const lower = row(y / 2);
    const Channel* const upper = y % 2 == 0 ? row(std::max(y / 2 - 1, 0)) : lower;
    enlargeRow(upper, lower, layer.size.width, reinterpret_cast<Channel*>(enlarged.row(y)));
  }
}

}  // namespace

void enlargeToVertices(const ConstImageView& layer, const ImageView& enlarged) {
  switch (layer.depth) {
    case Depth::Bits8:
      return enlarge<std::uint8_t>(layer, enlarged);
    case Depth::Bits16:
      return enlarge<std::uint16_t>(layer, enlarged);
    case Depth::Float:
      return enlarge<float>(layer, enlarged);
  }
}

}  // namespace vantorel::host
