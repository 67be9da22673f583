// Decompresses the pixel data of a PNG file before libpng reads it, with a faster library.
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

// Feeds libpng the rest of a file, from the first IDAT chunk on, with the pixel data stored uncompressed, so that
// libpng and zlib only copy it. Everything else, filters included, is left to libpng.
class PngPixelStream {
 public:
  // Decompresses the pixel data of a file that is positioned just after the header of its first IDAT chunk; `size` is
  // the decompressed size in bytes that follows from the image header, filter bytes included. Returns false, with the
  // file's position unchanged, if the data is damaged or too large to hold: libpng then reads and judges it itself.
  bool unpack(std::FILE* file, std::uint64_t size);

  // Copies the next `size` bytes; false if there are not that many.
  bool read(png_bytep out, std::size_t size);

 private:
  using Bytes = std::span<const std::uint8_t>;

  bool collectChunks(std::FILE* file);
  void append(Bytes bytes);
  void appendStored(Bytes pixels);

  std::vector<std::uint8_t> packed_;
  LargeBuffer pixels_;
  std::uint32_t first_length_ = 0;                    // of the first chunk, whose header libpng has read
  std::size_t first_left_ = 0;                        // bytes of it that are not appended yet
  std::array<std::uint8_t, 12> second_head_{};        // CRC of the first chunk, header of the second
  std::vector<std::array<std::uint8_t, 5>> heads_{};  // headers of stored deflate blocks
  std::vector<Bytes> pieces_;
  std::size_t piece_ = 0;
  std::size_t at_ = 0;  // within the piece
};

}  // namespace vantorel::cli
