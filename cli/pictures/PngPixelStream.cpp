#include "cli/pictures/PngPixelStream.h"

#include <libdeflate.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace vantorel::cli {

namespace {

// Pixels beyond this are unpacked row by row, so that what is held besides a picture stays small.
constexpr std::uint64_t kMost = std::uint64_t{128} << 20;
// DEFLATE makes a byte of no more than this.
constexpr std::uint64_t kMostRatio = 1032;
// The header of a stream whose matches may reach back as far as possible. zlib refuses some streams that state less.
constexpr std::uint8_t kWholeWindow = 0x78;
constexpr std::array<std::uint8_t, 2> kStoredHeader{kWholeWindow, 0x01};
constexpr std::array<std::uint8_t, 8> kChecks{};  // for the stream and its chunk; nobody verifies them
constexpr std::size_t kMostStored = 65535;        // in one block of DEFLATE

struct Free {
  void operator()(libdeflate_decompressor* unpacker) const { libdeflate_free_decompressor(unpacker); }
};

constexpr std::size_t kHeadSize = 8;
constexpr std::size_t kCheckSize = 4;

bool readBytes(std::FILE* file, std::uint8_t* out, std::size_t size) {
  return std::fread(out, 1, size, file) == size;
}

bool isPixels(const std::uint8_t* type) {
  return std::memcmp(type, "IDAT", 4) == 0;
}

std::uint64_t bytesLeft(std::FILE* file) {
  const off_t at = ftello(file);
  fseeko(file, 0, SEEK_END);
  const off_t end = ftello(file);
  fseeko(file, at, SEEK_SET);
  return end > at ? static_cast<std::uint64_t>(end - at) : 0;
}

bool unpackAll(std::span<const std::uint8_t> packed, std::span<std::uint8_t> out) {
  const std::unique_ptr<libdeflate_decompressor, Free> unpacker(libdeflate_alloc_decompressor());
  return unpacker && libdeflate_zlib_decompress(unpacker.get(), packed.data(), packed.size(), out.data(), out.size(),
                                                nullptr) == LIBDEFLATE_SUCCESS;
}

}  // namespace

bool PngPixelStream::unpack(std::FILE* file, std::uint64_t size) {
  const off_t begin = ftello(file);
  const bool is_held = size <= kMost && collectChunks(file) && packed_.front() == kWholeWindow &&
                       size / kMostRatio <= packed_.size() && first_length_ < size;
  if (is_held) {
    pixels_ = LargeBuffer(size);
  }
  const bool is_unpacked = is_held && unpackAll(packed_, {pixels_.data(), size});
  packed_ = {};
  if (!is_unpacked) {
    pixels_ = {};
    fseeko(file, begin, SEEK_SET);
    return false;
  }
  appendStored({pixels_.data(), size});
  return true;
}

// Whether all of them are there, with the checks that they should have.
bool PngPixelStream::collectChunks(std::FILE* file) {
  std::uint64_t left = bytesLeft(file);
  std::array<std::uint8_t, kHeadSize> head{};
  if (fseeko(file, -static_cast<off_t>(kHeadSize), SEEK_CUR) != 0 || !readBytes(file, head.data(), kHeadSize)) {
    return false;
  }
  first_length_ = png_get_uint_32(head.data());
  packed_.reserve(std::min(left, 2 * kMost));
  const std::uint32_t check_of_type = libdeflate_crc32(0, "IDAT", 4);
  while (isPixels(head.data() + 4)) {
    const std::size_t length = png_get_uint_32(head.data());
    const std::size_t before = packed_.size();
    if (length + kCheckSize > left || before + length > 2 * kMost) {
      return false;
    }
    left -= length + kCheckSize;
    packed_.resize(before + length + kCheckSize);
    std::uint8_t* const bytes = packed_.data() + before;
    if (!readBytes(file, bytes, length + kCheckSize) ||
        libdeflate_crc32(check_of_type, bytes, length) != png_get_uint_32(bytes + length)) {
      return false;
    }
    packed_.resize(before + length);
    if (left < kHeadSize || !readBytes(file, head.data(), kHeadSize)) {
      return false;
    }
    left -= kHeadSize;
  }
  return !packed_.empty();
}

// libpng knows the length of the first chunk already; a second one holds what does not fit there.
void PngPixelStream::append(Bytes bytes) {
  if (first_left_ < bytes.size()) {
    pieces_.push_back(bytes.first(first_left_));
    pieces_.emplace_back(second_head_);
    bytes = bytes.subspan(first_left_);
    first_left_ = SIZE_MAX;
  }
  pieces_.push_back(bytes);
  first_left_ -= first_left_ == SIZE_MAX ? 0 : bytes.size();
}

void PngPixelStream::appendStored(Bytes pixels) {
  const std::size_t blocks = (pixels.size() + kMostStored - 1) / kMostStored;
  const std::size_t whole = kStoredHeader.size() + blocks * sizeof heads_[0] + pixels.size() + kCheckSize;
  png_save_uint_32(second_head_.data() + kCheckSize, static_cast<png_uint_32>(whole - first_length_));
  std::memcpy(second_head_.data() + kHeadSize, "IDAT", 4);
  first_left_ = first_length_;
  heads_.reserve(blocks);
  append(kStoredHeader);
  while (!pixels.empty()) {
    const std::size_t size = std::min(kMostStored, pixels.size());
    const auto low = static_cast<std::uint8_t>(size & 0xFF);
    const auto high = static_cast<std::uint8_t>(size >> 8);
    const std::uint8_t is_last = size == pixels.size() ? 1 : 0;
    heads_.push_back(
        {is_last, low, high, static_cast<std::uint8_t>(~unsigned{low}), static_cast<std::uint8_t>(~unsigned{high})});
    append(heads_.back());
    append(pixels.first(size));
    pixels = pixels.subspan(size);
  }
  append(kChecks);
}

bool PngPixelStream::read(png_bytep out, std::size_t size) {
  while (size > 0) {
    if (piece_ == pieces_.size()) {
      return false;
    }
    const Bytes bytes = pieces_[piece_].subspan(at_);
    const std::size_t count = std::min(size, bytes.size());
    std::memcpy(out, bytes.data(), count);
    out += count;
    size -= count;
    at_ += count;
    if (at_ == pieces_[piece_].size()) {
      ++piece_;
      at_ = 0;
    }
  }
  return true;
}

}  // namespace vantorel::cli
