// Converts between arrays of one, three or four channels and the host's premultiplied RGBA pixels.
#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include "host/Image.h"
#include "python/Arguments.h"

namespace vantorel::python {

// A view of an array's memory; strides are in bytes and may be negative.
struct PixelArray {
  std::byte* data = nullptr;
  std::ptrdiff_t row_stride = 0;
  std::ptrdiff_t pixel_stride = 0;
  std::ptrdiff_t channel_stride = 0;
  host::Size size;
  int channels = 4;  // 1, 3 or 4
  host::Depth depth = host::Depth::Bits8;
};

// From an array of shape (height, width), (height, width, 1), (height, width, 3) or (height, width, 4) of uint8, uint16
// or float32 in the machine's byte order. TypeError for other types, ValueError for other shapes; both name `input`.
PixelArray pixelArrayOf(const py::array& array, const char* input);

// The array's own memory as the host's pixels, if the layout is the same: four contiguous channels.
std::optional<host::ImageView> hostView(const PixelArray& pixels);

// Whether the two may share memory. Arrays with interleaved rows count as sharing.
bool mayShareMemory(const PixelArray& a, const PixelArray& b);

// Whether every pixel's alpha is at its maximum.
bool isOpaque(const host::ConstImageView& pixels);

// Converts the array to premultiplied RGBA of the same size and depth. Straight RGBA is multiplied by its alpha.
void toHost(const PixelArray& from, bool premultiplied, const host::ImageView& to);

// Premultiplied red, green, blue, alpha in the array's units, composited behind the picture.
using Background = std::array<float, 4>;

// The opposite of `toHost`: composites over the background, if any, then keeps the channels of `to`, in straight alpha
// unless `premultiplied`. Rows outside `drawn` are transparent. `to` may be the memory of `from`.
void fromHost(const host::ImageView& from, const host::Rect& drawn, const std::optional<Background>& background,
              bool premultiplied, const PixelArray& to);

}  // namespace vantorel::python
