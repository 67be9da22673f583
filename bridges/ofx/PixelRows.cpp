#include "bridges/ofx/PixelRows.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "bridges/ofx/Half.h"
#include "host/Alpha.h"

namespace vantorel::ofx {
namespace {

constexpr int kChannels = 4;

// Calls the function with a null pointer to the channel type of the depth.
template <typename Function>
void withChannel(host::Depth depth, const Function& function) {
  switch (depth) {
    case host::Depth::Bits8:
      return function(static_cast<std::uint8_t*>(nullptr));
    case host::Depth::Bits16:
      return function(static_cast<std::uint16_t*>(nullptr));
    case host::Depth::Float:
      return function(static_cast<float*>(nullptr));
  }
}

// Converts between the host's channels and the drawn ones, which differ only for half.
template <typename Channel, typename Stored>
Channel toDrawn(Stored value) {
  if constexpr (std::is_same_v<Channel, Stored>) {
    return value;
  } else {
    return floatFromHalf(value);
  }
}

template <typename Stored, typename Channel>
Stored toStored(Channel value) {
  if constexpr (std::is_same_v<Channel, Stored>) {
    return value;
  } else {
    return halfFromFloat(value);
  }
}

template <typename Stored, typename Channel>
void readPixels(const Stored* from, Components components, int count, Channel* to) {
  const int stored_channels = components == Components::Rgba ? 4 : components == Components::Rgb ? 3 : 1;
  for (int i = 0; i < count; ++i, from += stored_channels, to += kChannels) {
    for (int c = 0; c < kChannels; ++c) {
      to[c] = c < stored_channels             ? toDrawn<Channel>(from[c])
              : components == Components::Rgb ? host::kOpaque<Channel>
                                              : toDrawn<Channel>(from[0]);
    }
  }
}

template <typename Stored, typename Channel>
void writePixels(const Channel* from, Components components, int count, Stored* to) {
  const int stored_channels = components == Components::Rgba ? 4 : components == Components::Rgb ? 3 : 1;
  const int first = components == Components::Alpha ? 3 : 0;
  for (int i = 0; i < count; ++i, from += kChannels, to += stored_channels) {
    for (int c = 0; c < stored_channels; ++c) {
      to[c] = toStored<Stored>(from[first + c]);
    }
  }
}

template <typename Channel>
void fade(Channel* row, int count, double share) {
  for (int i = 0; i < count * kChannels; ++i) {
    const double value = static_cast<double>(row[i]) * share;
    row[i] = static_cast<Channel>(std::is_floating_point_v<Channel> ? value : value + 0.5);
  }
}

template <typename Channel>
Channel scaled(Channel value, Channel share) {
  if constexpr (std::is_floating_point_v<Channel>) {
    return value * share;
  } else {
    constexpr std::uint32_t kMax = host::kOpaque<Channel>;
    return static_cast<Channel>((std::uint32_t{value} * share + kMax / 2) / kMax);
  }
}

template <typename Channel>
Channel rest(Channel share) {
  return static_cast<Channel>(host::kOpaque<Channel> - std::clamp(share, Channel{0}, host::kOpaque<Channel>));
}

template <typename Channel>
void holdOut(Channel* row, const Channel* matte, int count) {
  for (int i = 0; i < count * kChannels; ++i) {
    row[i] = scaled(row[i], rest(matte[i - i % kChannels + 3]));
  }
}

template <typename Channel>
void layOver(Channel* row, const Channel* background, int count) {
  for (int i = 0; i < count; ++i, row += kChannels, background += kChannels) {
    const Channel behind = rest(row[3]);
    for (int c = 0; c < kChannels; ++c) {
      const Channel shown = scaled(background[c], behind);
      if constexpr (std::is_floating_point_v<Channel>) {
        row[c] += shown;
      } else {
        row[c] = static_cast<Channel>(std::min<std::uint32_t>(host::kOpaque<Channel>, std::uint32_t{row[c]} + shown));
      }
    }
  }
}

}  // namespace

host::Depth drawnDepth(PixelDepth depth) {
  switch (depth) {
    case PixelDepth::Byte:
      return host::Depth::Bits8;
    case PixelDepth::Short:
      return host::Depth::Bits16;
    case PixelDepth::Half:
    case PixelDepth::Float:
      break;
  }
  return host::Depth::Float;
}

void loadRow(const ClipImage& image, int y, int x1, int x2, std::byte* row) {
  const RectI& bounds = image.bounds();
  const host::Depth depth = drawnDepth(image.depth());
  const std::size_t pixel_bytes = host::bytesPerPixel(depth);
  const int left = std::clamp(bounds.x1, x1, x2);
  const int right = y >= bounds.y1 && y < bounds.y2 ? std::clamp(bounds.x2, left, x2) : left;
  std::memset(row, 0, pixel_bytes * static_cast<std::size_t>(x2 - x1));
  if (left == right) {
    return;
  }
  withChannel(depth, [&](auto* type) {
    using Channel = std::remove_pointer_t<decltype(type)>;
    auto* const to = reinterpret_cast<Channel*>(row + pixel_bytes * static_cast<std::size_t>(left - x1));
    const std::byte* const from = image.pixel(left, y);
    if (image.depth() == PixelDepth::Half) {
      if constexpr (std::is_same_v<Channel, float>) {
        readPixels(reinterpret_cast<const std::uint16_t*>(from), image.components(), right - left, to);
      }
    } else {
      readPixels(reinterpret_cast<const Channel*>(from), image.components(), right - left, to);
    }
    if (image.isUnpremultiplied() && image.components() == Components::Rgba) {
      host::premultiplyRow(to, right - left);
    }
  });
}

void storeRow(const ClipImage& image, int y, int x1, int x2, std::byte* row) {
  withChannel(drawnDepth(image.depth()), [&](auto* type) {
    using Channel = std::remove_pointer_t<decltype(type)>;
    auto* const from = reinterpret_cast<Channel*>(row);
    std::byte* const to = image.pixel(x1, y);
    if (image.isUnpremultiplied() && image.components() == Components::Rgba) {
      host::unpremultiplyRow(from, x2 - x1);
    }
    if (image.depth() == PixelDepth::Half) {
      if constexpr (std::is_same_v<Channel, float>) {
        writePixels(from, image.components(), x2 - x1, reinterpret_cast<std::uint16_t*>(to));
      }
    } else if (to != row) {
      writePixels(from, image.components(), x2 - x1, reinterpret_cast<Channel*>(to));
    }
  });
}

void fadeRow(host::Depth depth, std::byte* row, int count, double share) {
  withChannel(depth, [&](auto* type) { fade(reinterpret_cast<decltype(type)>(row), count, share); });
}

void holdOutRow(host::Depth depth, std::byte* row, const std::byte* matte, int count) {
  withChannel(depth, [&](auto* type) {
    using Channel = std::remove_pointer_t<decltype(type)>;
    holdOut(reinterpret_cast<Channel*>(row), reinterpret_cast<const Channel*>(matte), count);
  });
}

void layOverRow(host::Depth depth, std::byte* row, const std::byte* background, int count) {
  withChannel(depth, [&](auto* type) {
    using Channel = std::remove_pointer_t<decltype(type)>;
    layOver(reinterpret_cast<Channel*>(row), reinterpret_cast<const Channel*>(background), count);
  });
}

}  // namespace vantorel::ofx
