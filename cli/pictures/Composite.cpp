#include "cli/pictures/Composite.h"

#include <tbb/parallel_for.h>

#include <algorithm>
#include <cstdint>

#include "cli/pictures/PixelConversion.h"

namespace vantorel::cli {

namespace {

template <typename Channel>
void overRow(Channel* row, const Channel* plate, int width) {
  for (int x = 0; x < width; ++x, row += 4, plate += 4) {
    const Channel alpha = row[3];
    for (int c = 0; c < 4; ++c) {
      if constexpr (std::is_floating_point_v<Channel>) {
        row[c] = row[c] + plate[c] * (1.0f - alpha);
      } else {
        constexpr std::uint32_t kMax = kOpaque<Channel>;
        const std::uint32_t behind = (std::uint32_t{plate[c]} * (kMax - alpha) + kMax / 2) / kMax;
        row[c] = static_cast<Channel>(std::min(kMax, row[c] + behind));
      }
    }
  }
}

template <typename Channel>
void overRows(const host::ImageView& picture, const host::ConstImageView& plate) {
  tbb::parallel_for(0, picture.size.height, [&](int y) {
    overRow(reinterpret_cast<Channel*>(picture.row(y)), reinterpret_cast<const Channel*>(plate.row(y)),
            picture.size.width);
  });
}

}  // namespace

void compositeOver(const host::ImageView& picture, const host::ConstImageView& plate) {
  switch (picture.depth) {
    case host::Depth::Bits8:
      return overRows<std::uint8_t>(picture, plate);
    case host::Depth::Bits16:
      return overRows<std::uint16_t>(picture, plate);
    case host::Depth::Float:
      return overRows<float>(picture, plate);
  }
}

}  // namespace vantorel::cli
