#include "cli/pictures/Composite.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "cli/base/Rows.h"
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

// Pixels that are looked at together: most lie wholly inside of a layer or wholly outside.
constexpr int kStretch = 32;

// The integer depths: where the picture is opaque it stays as it is, and where it is clear it becomes the plate.
template <typename Channel>
void overStretches(Channel* row, const Channel* plate, int width) {
  for (int x = 0; x < width; x += kStretch) {
    const int count = std::min(kStretch, width - x);
    Channel* const pixels = row + 4 * static_cast<std::ptrdiff_t>(x);
    const Channel* const behind = plate + 4 * static_cast<std::ptrdiff_t>(x);
    const auto channels = 4 * static_cast<std::size_t>(count);
    const host::RowAlpha alpha = host::alphaOfRow(pixels, count);
    if (alpha == host::RowAlpha::Transparent &&
        std::all_of(pixels, pixels + channels, [](Channel value) { return value == 0; })) {
      std::copy_n(behind, channels, pixels);
    } else if (alpha != host::RowAlpha::Opaque) {
      overRow(pixels, behind, count);
    }
  }
}

template <typename Channel>
void overRows(const host::ImageView& picture, const host::ConstImageView& plate) {
  forRows(picture.size.height, [&](int y) {
    auto* const row = reinterpret_cast<Channel*>(picture.row(y));
    const auto* const behind = reinterpret_cast<const Channel*>(plate.row(y));
    if constexpr (std::is_integral_v<Channel>) {
      overStretches(row, behind, picture.size.width);
    } else {
      overRow(row, behind, picture.size.width);
    }
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
