// The pixels of a PNG file, unpacked ahead of libpng by a faster library.
#pragma once

#include <png.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <vector>

#include "cli/pictures/LargeBuffer.h"

namespace vantorel::cli {

// Gives libpng the rest of a file, from the first chunk of pixels on, as a stream that is not packed: what libpng and
// zlib then do is to copy. All else, filters among it, stays libpng's.
class PngPixelStream {
 public:
  // Unpacks the pixels of a file that stands behind the head of its first chunk of them; `size` is what its header
  // makes them, filters included. False, with the file where it was, for pixels that are damaged or too many to be
  // held: libpng then reads and judges them itself.
  bool unpack(std::FILE* file, std::uint64_t size);

  // The next bytes, `size` of them; false where there are no more.
  bool read(png_bytep out, std::size_t size);

 private:
  using Bytes = std::span<const std::uint8_t>;

  bool collectChunks(std::FILE* file);
  void append(Bytes bytes);
  void appendStored(Bytes pixels);

  std::vector<std::uint8_t> packed_;
  LargeBuffer pixels_;
  std::uint32_t first_length_ = 0;                    // of the first chunk, whose head libpng has read
  std::size_t first_left_ = 0;                        // what of it is not appended yet
  std::array<std::uint8_t, 12> second_head_{};        // check of the first chunk, head of the second
  std::vector<std::array<std::uint8_t, 5>> heads_{};  // of blocks that are not packed
  std::vector<Bytes> pieces_;
  std::size_t piece_ = 0;
  std::size_t at_ = 0;  // within the piece
};

}  // namespace vantorel::cli
