// The pixels of a PNG file on their way into it, packed by libdeflate, which is faster than zlib and packs smaller. It
// takes them all at once.
#pragma once

#include <libdeflate.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "cli/pictures/LargeBuffer.h"

namespace vantorel::cli {

class PngPacking {
 public:
  // Whether a picture of those bytes, filters included, is small enough to be held besides itself.
  static bool holds(std::uint64_t size);

  // `level` is zlib's, 0 (stored) to 9. Throws std::bad_alloc.
  PngPacking(std::size_t row_bytes, int height, std::size_t pixel_bytes, int level);

  // The next row, in the file's order of bytes. It is stored as differences from pixel to pixel.
  void add(const std::uint8_t* row);

  // What the chunks hold in the end, when all rows have been added. Valid while this lives.
  std::span<const std::uint8_t> packed();

 private:
  struct Free {
    void operator()(libdeflate_compressor* packer) const { libdeflate_free_compressor(packer); }
  };

  std::size_t row_bytes_;
  std::size_t pixel_bytes_;
  std::unique_ptr<libdeflate_compressor, Free> packer_;
  std::size_t size_;
  LargeBuffer rows_;
  std::uint8_t* next_;
  std::size_t packed_size_;
  LargeBuffer packed_;
};

}  // namespace vantorel::cli
