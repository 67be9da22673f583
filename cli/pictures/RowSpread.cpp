#include "cli/pictures/RowSpread.h"

#include <cstring>
#include <limits>
#include <type_traits>

namespace vantorel::cli {

namespace {

// The number that stands for the same in the other type.
template <typename To, typename From>
To converted(From value) {
  constexpr auto kMost = static_cast<float>(std::numeric_limits<From>::max());
  if constexpr (std::is_same_v<To, From>) {
    return value;
  } else if constexpr (std::is_same_v<To, float>) {
    return static_cast<float>(value) * (1.0f / kMost);
  } else if constexpr (sizeof(To) > sizeof(From)) {
    return static_cast<To>(value * 257);
  } else {
    return static_cast<To>(static_cast<float>(value) * (255.0f / kMost) + 0.5f);
  }
}

template <typename To, int kCount, typename From>
void spread(const From* from, int width, int channels, int count, To* to) {
  for (int x = 0; x < width; ++x, from += channels, to += 4) {
    for (int c = 0; c < (kCount > 0 ? kCount : count); ++c) {
      to[c] = converted<To>(from[c]);
    }
  }
}

template <typename To, typename From>
void spreadTo(const From* samples, int width, int channels, ChannelRange range, std::byte* out) {
  const From* const from = samples + range.first;
  const int count = range.end - range.first;
  auto* const to = reinterpret_cast<To*>(out);
  if (count == 4 && channels == 4) {
    if constexpr (std::is_same_v<To, From>) {
      std::memcpy(to, from, 4 * sizeof(To) * static_cast<std::size_t>(width));
    } else {
      spread<To, 4>(from, width, 4, 4, to);
    }
  } else if (count == 3 && channels == 3) {
    spread<To, 3>(from, width, 3, 3, to);
  } else {
    spread<To, 0>(from, width, channels, count, to);
  }
}

template <typename From>
void spreadAt(const From* samples, int width, int channels, ChannelRange range, host::Depth depth, std::byte* out) {
  switch (depth) {
    case host::Depth::Bits8:
      return spreadTo<std::uint8_t>(samples, width, channels, range, out);
    case host::Depth::Bits16:
      return spreadTo<std::uint16_t>(samples, width, channels, range, out);
    case host::Depth::Float:
      return spreadTo<float>(samples, width, channels, range, out);
  }
}

}  // namespace

void spreadRow(const std::uint8_t* samples, int width, int channels, ChannelRange range, host::Depth depth,
               std::byte* out) {
  spreadAt(samples, width, channels, range, depth, out);
}

void spreadRow(const std::uint16_t* samples, int width, int channels, ChannelRange range, host::Depth depth,
               std::byte* out) {
  spreadAt(samples, width, channels, range, depth, out);
}

}  // namespace vantorel::cli
