#include "python/Pixels.h"

#include <cmath>
#include <cstdint>
#include <string>

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
                       " is none of uint8, uint16 and float32 in this machine's byte order; convert it with astype");
}

template <typename Channel>
void spreadRow(const PixelArray& from, int y, Channel* to) {
  const bool is_grey = from.channels == 1;
  for (int x = 0; x < from.size.width; ++x, to += 4) {
    to[0] = channelAt<Channel>(from, x, y, 0);
    to[1] = is_grey ? to[0] : channelAt<Channel>(from, x, y, 1);
    to[2] = is_grey ? to[0] : channelAt<Channel>(from, x, y, 2);
    to[3] = from.channels == 4 ? channelAt<Channel>(from, x, y, 3) : kOpaque<Channel>;
  }
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
  for (int x = 0; x < to.size.width; ++x, from += 4) {
    for (int c = 0; c < to.channels; ++c) {
      channelAt<Channel>(to, x, y, c) = from[c];
    }
  }
}

}  // namespace

PixelArray pixelArrayOf(const py::array& array, const char* input) {
  PixelArray pixels;
  pixels.depth = depthOf(array, input);
  const py::ssize_t channels = array.ndim() == 3 ? array.shape(2) : 1;
  if ((array.ndim() != 2 && array.ndim() != 3) || (channels != 1 && channels != 3 && channels != 4)) {
    refuse(input, "its shape is none of (height, width) and (height, width, 1, 3 or 4); reshape it");
  }
  pixels.size = sizeFrom({array.shape(1), array.shape(0)}, input);
  pixels.channels = static_cast<int>(channels);
  // Whether it may be written is the caller's to check.
  pixels.data = static_cast<std::byte*>(const_cast<void*>(array.data()));
  pixels.row_stride = array.strides(0);
  pixels.pixel_stride = array.strides(1);
  pixels.channel_stride = array.ndim() == 3 ? array.strides(2) : 0;
  const auto channel_bytes = static_cast<std::uintptr_t>(array.itemsize());
  const auto isAligned = [&](std::ptrdiff_t value) { return static_cast<std::uintptr_t>(value) % channel_bytes == 0; };
  if (reinterpret_cast<std::uintptr_t>(pixels.data) % channel_bytes != 0 || !isAligned(pixels.row_stride) ||
      !isAligned(pixels.pixel_stride) || !isAligned(pixels.channel_stride)) {
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

bool isOpaque(const PixelArray& pixels) {
  return pixels.channels != 4 || withChannel(pixels.depth, [&](auto channel) {
           using Channel = decltype(channel);
           for (int y = 0; y < pixels.size.height; ++y) {
             bool row_is_opaque = true;  // without an early end, so that the loop is vectorised
             for (int x = 0; x < pixels.size.width; ++x) {
               row_is_opaque &= channelAt<Channel>(pixels, x, y, 3) == kOpaque<Channel>;
             }
             if (!row_is_opaque) {
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

void fromHost(const host::ImageView& from, const std::optional<Background>& background, bool premultiplied,
              const PixelArray& to) {
  withChannel(from.depth, [&](auto channel) {
    using Channel = decltype(channel);
    for (int y = 0; y < from.size.height; ++y) {
      auto* row = reinterpret_cast<Channel*>(from.row(y));
      if (background) {
        compositeRow(row, from.size.width, *background);
      }
      if (to.channels == 4 && !premultiplied) {
        host::unpremultiplyRow(row, from.size.width);
      }
      if (from.data != to.data) {
        gatherRow(row, to, y);
      }
    }
  });
}

}  // namespace vantorel::python
