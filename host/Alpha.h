// Straight and premultiplied alpha: conversions of rows of four-channel pixels, alpha last, in place. `Channel` is
// uint8_t, uint16_t or float; integer channels round to nearest.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

namespace vantorel::host {

// The alpha value of an opaque pixel.
template <typename Channel>
constexpr Channel kOpaque = std::is_floating_point_v<Channel> ? Channel{1} : std::numeric_limits<Channel>::max();

// What the alphas of a row have in common.
enum class RowAlpha { Opaque, Transparent, Mixed };

namespace alpha_detail {

// Reads each pixel as one word so that the loop is vectorised: the bits of all channels are combined, and the alpha
// bits are examined at the end. Always inlined, since a call would be expensive for a few pixels.
template <typename Channel>
[[gnu::always_inline]] inline RowAlpha alphaOfWords(const Channel* row, int width) {
  using Word = std::conditional_t<sizeof(Channel) == 1, std::uint32_t, std::uint64_t>;
  Word all_bits = ~Word{0};
  Word any_bits = 0;
  for (int x = 0; x < width; ++x) {
    Word pixel;
    std::memcpy(&pixel, row + 4 * x, sizeof pixel);
    all_bits &= pixel;
    any_bits |= pixel;
  }
  if (std::bit_cast<std::array<Channel, 4>>(all_bits)[3] == kOpaque<Channel>) {
    return RowAlpha::Opaque;
  }
  return std::bit_cast<std::array<Channel, 4>>(any_bits)[3] == 0 ? RowAlpha::Transparent : RowAlpha::Mixed;
}

}  // namespace alpha_detail

template <typename Channel>
RowAlpha alphaOfRow(const Channel* row, int width) {
  if constexpr (std::is_integral_v<Channel>) {
    return alpha_detail::alphaOfWords(row, width);
  } else {
    bool is_opaque = true;
    bool is_transparent = true;
    for (int x = 0; x < width; ++x) {
      is_opaque = is_opaque && row[4 * x + 3] == kOpaque<Channel>;
      is_transparent = is_transparent && row[4 * x + 3] == Channel{0};
    }
    return is_opaque ? RowAlpha::Opaque : is_transparent ? RowAlpha::Transparent : RowAlpha::Mixed;
  }
}

namespace alpha_detail {

// Pixels per block: few enough for their factors to stay in the L1 cache, and blocks of uniform alpha are handled as a
// whole.
constexpr int kBlock = 32;

template <typename Factor>
using FactorTable = std::array<std::array<Factor, 4>, 256>;

// The channels' factors for each alpha, before the division by 255. Alpha's own factor, 255, leaves it unchanged.
inline constexpr auto kPremultiplyFactors = [] {
  FactorTable<std::uint16_t> table{};
  for (std::size_t a = 0; a < table.size(); ++a) {
    const auto factor = static_cast<std::uint16_t>(a);
    table[a] = {factor, factor, factor, 255};
  }
  return table;
}();

// The channels' factors for each alpha: 255 / alpha, or 1 to leave a channel unchanged.
inline constexpr auto kUnpremultiplyFactors = [] {
  FactorTable<float> table{};
  for (std::size_t a = 0; a < table.size(); ++a) {
    const float factor = a == 0 ? 1.0F : 255.0F / static_cast<float>(a);
    table[a] = {factor, factor, factor, 1.0F};
  }
  return table;
}();

// Calls the function with every channel of the block and its factor, in a loop that the compiler vectorises.
template <typename Factor, typename Function>
void multiplyBlock(std::uint8_t* row, int width, const FactorTable<Factor>& table, const Function& function) {
  std::array<Factor, std::size_t{kBlock} * 4> factors;
  for (int x = 0; x < width; ++x) {
    std::copy_n(table[row[4 * x + 3]].data(), 4, factors.data() + 4 * x);
  }
  for (int i = 0; i < width * 4; ++i) {
    row[i] = function(row[i], factors[static_cast<std::size_t>(i)]);
  }
}

inline void premultiplyBlock(std::uint8_t* row, int width) {
  multiplyBlock(row, width, kPremultiplyFactors, [](std::uint8_t value, std::uint16_t factor) {
    // value * factor / 255, rounded to nearest: there are no ties, and the shifts give the exact result for 16 bits.
    const auto product = static_cast<std::uint16_t>(value * factor + 128);
    return static_cast<std::uint8_t>(static_cast<std::uint16_t>(product + (product >> 8)) >> 8);
  });
}

inline void unpremultiplyBlock(std::uint8_t* row, int width) {
  multiplyBlock(row, width, kUnpremultiplyFactors, [](std::uint8_t value, float factor) {
    // Quotients just below a tie are at least 1 / 510 below it. What is added to 0.5 is less than that but more than
    // the float's rounding error, so that ties are rounded up and nothing else is.
    constexpr float kHalf = 0.5F + 1.0F / 4096.0F;
    return static_cast<std::uint8_t>(std::min(static_cast<std::int32_t>(value * factor + kHalf), 255));
  });
}

}  // namespace alpha_detail

template <typename Channel>
void premultiplyPixel(Channel* pixel) {
  for (int c = 0; c < 3; ++c) {
    if constexpr (std::is_floating_point_v<Channel>) {
      pixel[c] = pixel[c] * pixel[3];
    } else {
      constexpr std::uint32_t kMax = kOpaque<Channel>;
      pixel[c] = static_cast<Channel>((std::uint32_t{pixel[c]} * pixel[3] + kMax / 2) / kMax);
    }
  }
}

// If alpha is zero, the colour is left unchanged.
template <typename Channel>
void unpremultiplyPixel(Channel* pixel) {
  const Channel alpha = pixel[3];
  if (alpha == Channel{0} || alpha == kOpaque<Channel>) {
    return;
  }
  for (int c = 0; c < 3; ++c) {
    if constexpr (std::is_floating_point_v<Channel>) {
      pixel[c] = pixel[c] / alpha;
    } else {
      constexpr std::uint32_t kMax = kOpaque<Channel>;
      pixel[c] = static_cast<Channel>(std::min(kMax, (std::uint32_t{pixel[c]} * kMax + alpha / 2u) / alpha));
    }
  }
}

template <typename Channel>
void premultiplyRow(Channel* row, int width) {
  if constexpr (std::is_same_v<Channel, std::uint8_t>) {
    for (int x = 0; x < width; x += alpha_detail::kBlock) {
      alpha_detail::premultiplyBlock(row + 4 * x, std::min(alpha_detail::kBlock, width - x));
    }
  } else {
    if (std::is_integral_v<Channel> && alphaOfRow(row, width) == RowAlpha::Opaque) {
      return;
    }
    for (int x = 0; x < width; ++x) {
      premultiplyPixel(row + 4 * x);
    }
  }
}

// If alpha is zero, the colour is left unchanged.
template <typename Channel>
void unpremultiplyRow(Channel* row, int width) {
  if constexpr (std::is_same_v<Channel, std::uint8_t>) {
    constexpr int kBlock = alpha_detail::kBlock;
    int x = 0;
    // Whole blocks have a constant width, so that the loop over their pixels can be unrolled.
    for (; x + kBlock <= width; x += kBlock) {
      if (alpha_detail::alphaOfWords(row + 4 * x, kBlock) == RowAlpha::Mixed) {
        alpha_detail::unpremultiplyBlock(row + 4 * x, kBlock);
      }
    }
    if (x < width && alphaOfRow(row + 4 * x, width - x) == RowAlpha::Mixed) {
      alpha_detail::unpremultiplyBlock(row + 4 * x, width - x);
    }
  } else {
    for (int x = 0; x < width; ++x) {
      unpremultiplyPixel(row + 4 * x);
    }
  }
}

// Undoes unpremultiplyRow: it too leaves the colour unchanged if alpha is zero.
template <typename Channel>
void repremultiplyRow(Channel* row, int width) {
  for (int x = 0; x < width; ++x, row += 4) {
    if (row[3] != Channel{0}) {
      premultiplyPixel(row);
    }
  }
}

}  // namespace vantorel::host
