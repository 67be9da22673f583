// Pictures in memory: views of pixels that the caller owns, and images that the host owns. Pixels have four channels
// and are premultiplied by alpha; the effect treats all channels alike, so their order does not matter as long as layer
// and output agree.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "host/Error.h"

namespace vantorel::host {

// Bits per channel.
enum class Depth : std::int32_t { Bits8 = 8, Bits16 = 16, Float = 32 };

// Bytes of one pixel: 4, 8 or 16.
constexpr std::size_t bytesPerPixel(Depth depth) {
  return static_cast<std::size_t>(depth) / 2;
}

struct Size {
  int width = 0;
  int height = 0;
  bool operator==(const Size&) const = default;
};

// "640x480"
std::string sizeText(Size size);

// An integer rectangle; right and bottom are exclusive.
struct Rect {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
  int width() const { return right - left; }
  int height() const { return bottom - top; }
  bool empty() const { return right <= left || bottom <= top; }
  bool operator==(const Rect&) const = default;
};

// A view of `size.height` rows of `size.width` pixels. `data` is the first pixel of the top row, and `row_bytes` is the
// distance from a row to the one below it: it may be larger than a row's pixels, and is negative if the bottom row
// comes first in memory. It must be a multiple of the channel size, and `data` must be aligned to that size.
template <typename Byte>
struct BasicImageView {
  Byte* data = nullptr;
  std::ptrdiff_t row_bytes = 0;
  Size size;
  Depth depth = Depth::Bits8;

  Byte* row(int y) const { return data + row_bytes * y; }
  Byte* pixel(int x, int y) const { return row(y) + static_cast<std::ptrdiff_t>(bytesPerPixel(depth)) * x; }
};

using ImageView = BasicImageView<std::byte>;
using ConstImageView = BasicImageView<const std::byte>;

inline ConstImageView asConst(const ImageView& view) {
  return {view.data, view.row_bytes, view.size, view.depth};
}

// An image that owns its pixels, with rows aligned to kRowAlignment bytes.
class Image {
 public:
  static constexpr std::size_t kRowAlignment = 64;

  Image() = default;

  // Allocates an image without clearing it. Fails with InvalidArgument for a size that is not positive or whose rows
  // are too long for a 32-bit stride, and with OutOfMemory.
  static Result<Image> create(Size size, Depth depth);

  // Makes this an image of that size and depth; if it already is one, its pixels are kept. Fails like `create`, and is
  // empty after an error.
  Result<void> fit(Size size, Depth depth);

  Size size() const { return view_.size; }
  Depth depth() const { return view_.depth; }
  bool empty() const { return view_.data == nullptr; }
  ImageView view() { return view_; }
  ConstImageView view() const { return asConst(view_); }

  // Sets every byte to zero: transparent.
  void clear();

 private:
  struct Free {
    void operator()(std::byte* memory) const;
  };
  static Result<Image> allocate(Size size, Depth depth);

  std::unique_ptr<std::byte[], Free> memory_;
  ImageView view_;
};

}  // namespace vantorel::host
