#include "python/Pixels.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>

#include "host/Alpha.h"

namespace vantorel::python {

namespace {

using host::kOpaque;

template <typename Channel>
Channel& channelAt(const PixelArray& pixels, int x, int y, int c) {
  return *reinterpret_cast<Channel*>(pixels.data + pixels.row_stride * y + pixels.pixel_stride * x +
                                     pixels.channel_stride * c);
}

// Calls the function with a value of the depth's channel type.
template <typename Function>
auto withChannel(host::Depth depth, const Function& function) {
  switch (depth) {
    case host::Depth::Bits8:
      return function(std::uint8_t{});
    case host::Depth::Bits16:
      return function(std::uint16_t{});
    default:
      return function(float{});
  }
}

host::Depth depthOf(const py::array& array, const char* input) {
  if (py::isinstance<py::array_t<std::uint8_t>>(array)) {
    return host::Depth::Bits8;
  }
  if (py::isinstance<py::array_t<std::uint16_t>>(array)) {
    return host::Depth::Bits16;
  }
  if (py::isinstance<py::array_t<float>>(array)) {
    return host::Depth::Float;
  }
  throw py::type_error(std::string(input) + ": its dtype " + std::string(py::str(array.dtype())) +
                       " is not uint8, uint16 or float32 in this machine's byte order; convert it with astype");
}

// Whether a row's pixels and channels are contiguous.
bool isPacked(const PixelArray& pixels) {
  const auto channel_bytes = static_cast<std::ptrdiff_t>(bytesPerPixel(pixels.depth)) / 4;
  return pixels.pixel_stride == channel_bytes * pixels.channels &&
         (pixels.channels == 1 || pixels.channel_stride == channel_bytes);
}

// Calls the function with the number of channels as a constant.
template <typename Function>
void withChannelCount(int channels, const Function& function) {
  if (channels == 1) {
    function(std::integral_constant<int, 1>{});
  } else if (channels == 3) {
    function(std::integral_constant<int, 3>{});
  } else {
    function(std::integral_constant<int, 4>{});
  }
}

template <int kChannels, typename Channel, typename At>
void spreadPixels(int width, const At& at, Channel* to) {
  for (int x = 0; x < width; ++x, to += 4) {
    to[0] = at(x, 0);
    to[1] = at(x, kChannels == 1 ? 0 : 1);
    to[2] = at(x, kChannels == 1 ? 0 : 2);
    to[3] = kChannels == 4 ? at(x, kChannels - 1) : kOpaque<Channel>;
  }
}

// Converts contiguous RGB to RGBA and back. Each pixel is copied as one word of four channels, which includes the first
// channel of the next pixel; the last pixel, which has no successor, is copied separately.
template <typename Channel>
void spreadTriples(const Channel* from, int width, Channel* to) {
  std::array<Channel, 4> pixel;
  for (int x = 0; x + 1 < width; ++x) {
    std::memcpy(pixel.data(), from + 3 * x, sizeof pixel);
    pixel[3] = kOpaque<Channel>;
    std::memcpy(to + 4 * x, pixel.data(), sizeof pixel);
  }
  std::copy_n(from + 3 * (width - 1), 3, to + 4 * (width - 1));
  to[4 * width - 1] = kOpaque<Channel>;
}

template <typename Channel>
void gatherTriples(const Channel* from, int width, Channel* to) {
  for (int x = 0; x + 1 < width; ++x) {
    std::memcpy(to + 3 * x, from + 4 * x, 4 * sizeof(Channel));
  }
  std::memcpy(to + 3 * (width - 1), from + 4 * (width - 1), 3 * sizeof(Channel));
}

template <typename Channel>
void spreadRow(const PixelArray& from, int y, Channel* to) {
  const Channel* row = &channelAt<Channel>(from, 0, y, 0);
  const int width = from.size.width;
  if (from.channels == 3 && isPacked(from)) {
    spreadTriples(row, width, to);
    return;
  }
  withChannelCount(from.channels, [&](auto count) {
    constexpr int kChannels = decltype(count)::value;
    if (isPacked(from)) {
      spreadPixels<kChannels>(
          width, [row](int x, int c) { return row[x * kChannels + c]; }, to);
    } else {
      spreadPixels<kChannels>(
          width, [&](int x, int c) { return channelAt<Channel>(from, x, y, c); }, to);
    }
  });
}

template <typename Channel>
Channel over(Channel front, float below, float share_below) {
  const float sum = static_cast<float>(front) + below * share_below;
  if constexpr (std::is_floating_point_v<Channel>) {
    return sum;
  } else {
    return static_cast<Channel>(std::clamp(sum + 0.5F, 0.0F, static_cast<float>(kOpaque<Channel>)));
  }
}

template <typename Channel>
void compositeRow(Channel* row, int width, const Background& background) {
  for (int x = 0; x < width; ++x, row += 4) {
    if (row[3] == kOpaque<Channel>) {
      continue;
    }
    const float share = 1.0F - static_cast<float>(row[3]) / static_cast<float>(kOpaque<Channel>);
    for (std::size_t c = 0; c < 4; ++c) {
      row[c] = over(row[c], background[c], share);
    }
  }
}

template <typename Channel>
void gatherRow(const Channel* from, const PixelArray& to, int y) {
  const int width = to.size.width;
  Channel* row = &channelAt<Channel>(to, 0, y, 0);
  const bool is_packed = isPacked(to);
  if (to.channels == 3 && is_packed) {
    gatherTriples(from, width, row);
    return;
  }
  withChannelCount(to.channels, [&](auto count) {
    constexpr int kChannels = decltype(count)::value;
    for (int x = 0; x < width; ++x) {
      for (int c = 0; c < kChannels; ++c) {
        (is_packed ? row[x * kChannels + c] : channelAt<Channel>(to, x, y, c)) = from[4 * x + c];
      }
    }
  });
}

// The addresses from the array's first byte to one past its last.
std::pair<std::uintptr_t, std::uintptr_t> addressesOf(const PixelArray& pixels) {
  auto first = reinterpret_cast<std::uintptr_t>(pixels.data);
  std::uintptr_t last = first;
  for (const std::ptrdiff_t reach :
       {pixels.row_stride * (pixels.size.height - 1), pixels.pixel_stride * (pixels.size.width - 1),
        pixels.channel_stride * (pixels.channels - 1)}) {
    (reach < 0 ? first : last) += static_cast<std::uintptr_t>(reach);
  }
  return {first, last + bytesPerPixel(pixels.depth) / 4};
}

}  // namespace

PixelArray pixelArrayOf(const py::array& array, const char* input) {
  PixelArray pixels;
  pixels.depth = depthOf(array, input);
  const py::ssize_t channels = array.ndim() == 3 ? array.shape(2) : 1;
  if ((array.ndim() != 2 && array.ndim() != 3) || (channels != 1 && channels != 3 && channels != 4)) {
    refuse(input, "its shape is not (height, width) or (height, width, 1, 3 or 4); reshape it");
  }
  pixels.size = sizeFrom({array.shape(1), array.shape(0)}, input);
  pixels.channels = static_cast<int>(channels);
  // The caller checks whether the array is writeable.
  pixels.data = static_cast<std::byte*>(const_cast<void*>(array.data()));
  pixels.row_stride = array.strides(0);
  pixels.pixel_stride = array.strides(1);
  pixels.channel_stride = array.ndim() == 3 ? array.strides(2) : 0;
  const auto channel_bytes = static_cast<std::uintptr_t>(array.itemsize());
  const auto is_aligned = [&](std::ptrdiff_t value) { return static_cast<std::uintptr_t>(value) % channel_bytes == 0; };
  if (reinterpret_cast<std::uintptr_t>(pixels.data) % channel_bytes != 0 || !is_aligned(pixels.row_stride) ||
      !is_aligned(pixels.pixel_stride) || !is_aligned(pixels.channel_stride)) {
    refuse(input, "its elements are not aligned; copy it with numpy.require(array, requirements='A')");
  }
  return pixels;
}

std::optional<host::ImageView> hostView(const PixelArray& pixels) {
  const auto pixel_bytes = static_cast<std::ptrdiff_t>(bytesPerPixel(pixels.depth));
  if (pixels.channels != 4 || pixels.pixel_stride != pixel_bytes || pixels.channel_stride != pixel_bytes / 4 ||
      pixels.row_stride < pixel_bytes * pixels.size.width) {
    return std::nullopt;
  }
  return host::ImageView{pixels.data, pixels.row_stride, pixels.size, pixels.depth};
}

bool mayShareMemory(const PixelArray& a, const PixelArray& b) {
  const auto [a_begin, a_end] = addressesOf(a);
  const auto [b_begin, b_end] = addressesOf(b);
  return a_begin < b_end && b_begin < a_end;
}

bool isOpaque(const host::ConstImageView& pixels) {
  return withChannel(pixels.depth, [&](auto channel) {
    using Channel = decltype(channel);
    for (int y = 0; y < pixels.size.height; ++y) {
      const auto* row = reinterpret_cast<const Channel*>(pixels.row(y));
      if (host::alphaOfRow(row, pixels.size.width) != host::RowAlpha::Opaque) {
        return false;
      }
    }
    return true;
  });
}

void toHost(const PixelArray& from, bool premultiplied, const host::ImageView& to) {
  withChannel(from.depth, [&](auto channel) {
    using Channel = decltype(channel);
    for (int y = 0; y < from.size.height; ++y) {
      auto* row = reinterpret_cast<Channel*>(to.row(y));
      spreadRow(from, y, row);
      if (from.channels == 4 && !premultiplied) {
        host::premultiplyRow(row, from.size.width);
      }
    }
  });
}

void fromHost(const host::ImageView& from, const host::Rect& drawn, const std::optional<Background>& background,
              bool premultiplied, const PixelArray& to) {
  withChannel(from.depth, [&](auto channel) {
    using Channel = decltype(channel);
    for (int y = 0; y < from.size.height; ++y) {
      auto* row = reinterpret_cast<Channel*>(from.row(y));
      if (background) {
        compositeRow(row, from.size.width, *background);
      }
      const bool is_clear = !background && (y < drawn.top || y >= drawn.bottom);
      if (to.channels == 4 && !premultiplied && !is_clear) {
        host::unpremultiplyRow(row, from.size.width);
      }
      if (from.data != to.data) {
        gatherRow(row, to, y);
      }
    }
  });
}

}  // namespace vantorel::python
