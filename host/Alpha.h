// Straight and premultiplied alpha: conversions of rows of four-channel pixels, alpha last, in place. `Channel` is
// uint8_t, uint16_t or float; integer channels round to nearest.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace vantorel::host {

// The channel value of a wholly covered pixel's alpha.
template <typename Channel>
constexpr Channel kOpaque = std::is_floating_point_v<Channel> ? Channel{1} : std::numeric_limits<Channel>::max();

template <typename Channel>
void premultiplyRow(Channel* row, int width) {
  for (int x = 0; x < width; ++x, row += 4) {
    for (int c = 0; c < 3; ++c) {
      if constexpr (std::is_floating_point_v<Channel>) {
        row[c] = row[c] * row[3];
      } else {
        constexpr std::uint32_t kMax = kOpaque<Channel>;
        row[c] = static_cast<Channel>((std::uint32_t{row[c]} * row[3] + kMax / 2) / kMax);
      }
    }
  }
}

// Where alpha is zero the colour stays as it is.
template <typename Channel>
void unpremultiplyRow(Channel* row, int width) {
  for (int x = 0; x < width; ++x, row += 4) {
    const Channel alpha = row[3];
    if (alpha == Channel{0} || alpha == kOpaque<Channel>) {
      continue;
    }
    for (int c = 0; c < 3; ++c) {
      if constexpr (std::is_floating_point_v<Channel>) {
        row[c] = row[c] / alpha;
      } else {
        constexpr std::uint32_t kMax = kOpaque<Channel>;
        row[c] = static_cast<Channel>(std::min(kMax, (std::uint32_t{row[c]} * kMax + alpha / 2u) / alpha));
      }
    }
  }
}

// Undoes unpremultiplyRow: where alpha is zero the colour stays as it is, too.
template <typename Channel>
void repremultiplyRow(Channel* row, int width) {
  for (int x = 0; x < width; ++x, row += 4) {
    if (row[3] != Channel{0}) {
      premultiplyRow(row, 1);
    }
  }
}

}  // namespace vantorel::host
