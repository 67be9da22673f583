#include "cli/pictures/PngPacking.h"

#include <algorithm>
#include <new>

namespace vantorel::cli {

namespace {

constexpr std::uint64_t kMost = std::uint64_t{128} << 20;
constexpr std::uint8_t kDifferences = 1;  // the number of the filter

}  // namespace

bool PngPacking::holds(std::uint64_t size) {
  return size <= kMost;
}

PngPacking::PngPacking(std::size_t row_bytes, int height, std::size_t pixel_bytes, int level)
    : row_bytes_(row_bytes),
      pixel_bytes_(pixel_bytes),
      packer_(libdeflate_alloc_compressor(level)),
      size_((1 + row_bytes) * static_cast<std::size_t>(height)),
      rows_(size_),
      next_(rows_.data()),
      packed_size_(libdeflate_zlib_compress_bound(packer_.get(), size_)),
      packed_(packed_size_) {
  if (!packer_) {
    throw std::bad_alloc();
  }
}

void PngPacking::add(const std::uint8_t* row) {
  *next_++ = kDifferences;
  std::copy_n(row, pixel_bytes_, next_);
  std::transform(row + pixel_bytes_, row + row_bytes_, row, next_ + pixel_bytes_,
                 [](std::uint8_t value, std::uint8_t before) { return static_cast<std::uint8_t>(value - before); });
  next_ += row_bytes_;
}

std::span<const std::uint8_t> PngPacking::packed() {
  const std::size_t size = libdeflate_zlib_compress(packer_.get(), rows_.data(), size_, packed_.data(), packed_size_);
  return {packed_.data(), size};
}

}  // namespace vantorel::cli
