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
void downsampleRows(const ConstImageView& layer, std::int64_t n, const ImageView& scaled) {
  const auto count = static_cast<BlockSum<Channel>>(n * n);
  for (int y = 0; y < scaled.size.height; ++y) {
    const std::int64_t bottom = std::min<std::int64_t>(n * (std::int64_t{y} + 1), layer.size.height);
    auto* const out = reinterpret_cast<Channel*>(scaled.row(y));
    for (std::int64_t x = 0; x < scaled.size.width; ++x) {
      const std::int64_t right = std::min<std::int64_t>(n * (x + 1), layer.size.width);
      BlockSum<Channel> sums[kChannels] = {};
      for (std::int64_t row = n * y; row < bottom; ++row) {
        const auto* const in = reinterpret_cast<const Channel*>(layer.row(static_cast<int>(row)));
        for (std::int64_t i = n * x * kChannels; i < right * kChannels; ++i) {
          sums[i % kChannels] += static_cast<BlockSum<Channel>>(in[i]);
        }
      }
      for (std::int64_t c = 0; c < kChannels; ++c) {
        out[x * kChannels + c] = mean<Channel>(sums[c], count);
      }
    }
  }
}

}  // namespace

void downsampleLayer(const ConstImageView& layer, int n, const ImageView& scaled) {
  switch (layer.depth) {
    case Depth::Bits8:
      return downsampleRows<std::uint8_t>(layer, n, scaled);
    case Depth::Bits16:
      return downsampleRows<std::uint16_t>(layer, n, scaled);
    case Depth::Float:
      return downsampleRows<float>(layer, n, scaled);
  }
}

}  // namespace vantorel::host
