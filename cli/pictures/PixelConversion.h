// Conversions of rows of pixels between files' conventions and the premultiplied RGBA that is rendered. `Channel` is
// uint8_t, uint16_t or float; integer channels round to nearest.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace vantorel::cli {

template <typename Channel>
constexpr Channel kOpaque = std::is_floating_point_v<Channel> ? Channel{1} : std::numeric_limits<Channel>::max();

// Where each of R, G, B and A is found among the channels as read; -1 for an alpha that is not there (opaque).
using ChannelMap = std::array<int, 4>;
constexpr ChannelMap kIdentityMap{0, 1, 2, 3};

// Rearranges the pixels of a row in place: channel c becomes what channel map[c] was.
template <typename Channel>
void rearrangeRow(Channel* row, int width, const ChannelMap& map) {
  for (int x = 0; x < width; ++x, row += 4) {
    const Channel read[4] = {row[0], row[1], row[2], row[3]};
    for (std::size_t c = 0; c < 4; ++c) {
      row[c] = map[c] < 0 ? kOpaque<Channel> : read[map[c]];
    }
  }
}

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

// 0 to 1 as the integer type's whole range; outside it the nearest end, NaN zero.
template <typename Channel>
Channel quantise(float value) {
  constexpr float kMax = static_cast<float>(kOpaque<Channel>);
  if (!(value > 0.0f)) {
    return 0;
  }
  if (value >= 1.0f) {
    return kOpaque<Channel>;
  }
  // Half of the next whole number above twice the value: rounded, ties up.
  return static_cast<Channel>((static_cast<std::uint32_t>(value * (2.0f * kMax)) + 1) / 2);
}

}  // namespace vantorel::cli
