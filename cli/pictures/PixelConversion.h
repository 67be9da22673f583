// Conversions of rows of pixels between files' conventions and the premultiplied RGBA that is rendered. `Channel` is
// uint8_t, uint16_t or float; integer channels round to nearest.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "host/Alpha.h"

namespace vantorel::cli {

using host::kOpaque;
using host::premultiplyRow;
using host::repremultiplyRow;
using host::unpremultiplyRow;

// Where each of R, G, B and A is found among the channels as read; -1 for an alpha that is not there (opaque).
using ChannelMap = std::array<int, 4>;
constexpr ChannelMap kIdentityMap{0, 1, 2, 3};

// Sets the alphas of a row.
template <typename Channel>
void makeOpaque(Channel* row, int width) {
  if constexpr (sizeof(Channel) == 1) {
    // Pixel by pixel, which compilers turn into vectors.
    constexpr auto kMask = std::bit_cast<std::uint32_t>(std::array<std::uint8_t, 4>{0, 0, 0, kOpaque<std::uint8_t>});
    for (int x = 0; x < width; ++x) {
      std::uint32_t pixel = 0;
      std::memcpy(&pixel, row + 4 * static_cast<std::ptrdiff_t>(x), sizeof pixel);
      pixel |= kMask;
      std::memcpy(row + 4 * static_cast<std::ptrdiff_t>(x), &pixel, sizeof pixel);
    }
  } else {
    for (int x = 0; x < width; ++x) {
      row[4 * static_cast<std::ptrdiff_t>(x) + 3] = kOpaque<Channel>;
    }
  }
}

// Rearranges the pixels of a row in place: channel c becomes what channel map[c] was.
template <typename Channel>
void rearrangeRow(Channel* row, int width, const ChannelMap& map) {
  if (map == ChannelMap{0, 1, 2, -1}) {
    makeOpaque(row, width);
    return;
  }
  for (int x = 0; x < width; ++x, row += 4) {
    const Channel read[4] = {row[0], row[1], row[2], row[3]};
    for (std::size_t c = 0; c < 4; ++c) {
      row[c] = map[c] < 0 ? kOpaque<Channel> : read[map[c]];
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
