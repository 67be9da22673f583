#include "host/Downsample.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

namespace vantorel::host {

namespace {

constexpr std::int64_t kChannels = 4;

template <typename Channel>
using BlockSum = std::conditional_t<std::is_floating_point_v<Channel>, double, std::uint64_t>;

template <typename Channel>
Channel mean(BlockSum<Channel> sum, BlockSum<Channel> count) {
  if constexpr (std::is_floating_point_v<Channel>) {
    return static_cast<Channel>(sum / count);
  } else {
    return static_cast<Channel>((sum + count / 2) / count);
  }
}

template <typename Channel>
void averageRow(const ConstImageView& picture, std::int64_t n, BlockEdges edges, std::int64_t y, Size size,
                Channel* out) {
  const std::int64_t bottom = std::min<std::int64_t>(n * (y + 1), picture.size.height);
  for (std::int64_t x = 0; x < size.width; ++x, out += kChannels) {
    const std::int64_t right = std::min<std::int64_t>(n * (x + 1), picture.size.width);
    BlockSum<Channel> sums[kChannels] = {};
    for (std::int64_t row = n * y; row < bottom; ++row) {
      const auto* const in = reinterpret_cast<const Channel*>(picture.row(static_cast<int>(row)));
      for (std::int64_t i = n * x * kChannels; i < right * kChannels; ++i) {
        sums[i % kChannels] += static_cast<BlockSum<Channel>>(in[i]);
      }
    }
    const std::int64_t count = edges == BlockEdges::Transparent ? n * n : (bottom - n * y) * (right - n * x);
    for (std::int64_t c = 0; c < kChannels; ++c) {
      out[c] = mean<Channel>(sums[c], static_cast<BlockSum<Channel>>(count));
    }
  }
}

}  // namespace

void downsample(const ConstImageView& picture, int n, BlockEdges edges, const ImageView& scaled) {
  downsampleRows(picture, n, edges, scaled, 0, scaled.size.height);
}

void downsampleRows(const ConstImageView& picture, int n, BlockEdges edges, const ImageView& scaled, int top,
                    int bottom) {
  for (int y = top; y < bottom; ++y) {
    switch (picture.depth) {
      case Depth::Bits8:
        averageRow(picture, n, edges, y, scaled.size, reinterpret_cast<std::uint8_t*>(scaled.row(y)));
        break;
      case Depth::Bits16:
        averageRow(picture, n, edges, y, scaled.size, reinterpret_cast<std::uint16_t*>(scaled.row(y)));
        break;
      case Depth::Float:
        averageRow(picture, n, edges, y, scaled.size, reinterpret_cast<float*>(scaled.row(y)));
        break;
    }
  }
}

}  // namespace vantorel::host
