#include "cli/pictures/Truncation.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <istream>
#include <iterator>
#include <string>

namespace vantorel::cli {

namespace {

constexpr std::array<unsigned char, 8> kPngSignature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};

// Whether the chain of chunks (length, name, data, checksum) ends with a complete IEND.
bool pngIsWhole(std::istream& file, std::uint64_t size) {
  std::uint64_t at = kPngSignature.size();
  std::array<unsigned char, 8> head{};
  while (file.seekg(static_cast<std::streamoff>(at)) && file.read(reinterpret_cast<char*>(head.data()), head.size())) {
    const std::uint64_t length = std::uint64_t{head[0]} << 24 | std::uint64_t{head[1]} << 16 |
                                 std::uint64_t{head[2]} << 8 | std::uint64_t{head[3]};
    constexpr std::uint64_t kHeadAndCheck = 12;
    at += kHeadAndCheck + length;
    if (at > size) {
      return false;
    }
    if (std::memcmp(head.data() + 4, "IEND", 4) == 0) {
      return true;
    }
  }
  return false;
}

constexpr int kFill = 0xFF;
constexpr int kEndOfImage = 0xD9;

bool standsAlone(int marker) {
  return marker == 0x00 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8);
}

// A file's bytes one after the other, read in blocks.
class ByteReader {
 public:
  explicit ByteReader(std::istream& file) : file_(file) {}

  // -1 at the end.
  int next() { return at_ < count_ || refill() ? static_cast<unsigned char>(block_[at_++]) : -1; }

  // Moves past the next byte of that value. False if there is none.
  bool find(int value) {
    while (at_ < count_ || refill()) {
      const void* const found = std::memchr(block_.data() + at_, value, count_ - at_);
      if (found != nullptr) {
        at_ = static_cast<std::size_t>(static_cast<const char*>(found) - block_.data()) + 1;
        return true;
      }
      at_ = count_;
    }
    return false;
  }

  void skip(std::size_t bytes) {
    while (bytes > 0 && (at_ < count_ || refill())) {
      const std::size_t step = std::min(bytes, count_ - at_);
      at_ += step;
      bytes -= step;
    }
  }

 private:
  bool refill() {
    file_.read(block_.data(), std::ssize(block_));
    count_ = static_cast<std::size_t>(file_.gcount());
    at_ = 0;
    return count_ > 0;
  }

  std::istream& file_;
  std::array<char, 65536> block_{};
  std::size_t at_ = 0;
  std::size_t count_ = 0;
};

// Whether there is an end-of-image marker outside the segments; thumbnails inside segments have markers of their own.
bool jpegIsWhole(std::istream& file) {
  file.seekg(2);
  ByteReader bytes(file);
  while (bytes.find(kFill)) {
    int marker = kFill;
    while (marker == kFill) {
      marker = bytes.next();
    }
    if (marker == kEndOfImage) {
      return true;
    }
    if (standsAlone(marker)) {
      continue;
    }
    const int high = bytes.next();
    const int low = bytes.next();
    if (low < 0) {
      return false;
    }
    bytes.skip(static_cast<std::size_t>(std::max(0, high * 256 + low - 2)));
  }
  return false;
}

constexpr std::array<unsigned char, 4> kOpenExrSignature{0x76, 0x2F, 0x31, 0x01};

std::uint32_t littleEndian(std::istream& file) {
  std::array<unsigned char, 4> bytes{};
  file.read(reinterpret_cast<char*>(bytes.data()), bytes.size());
  return std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
         std::uint32_t{bytes[3]} << 24;
}

// Whether the file holds as many bytes as each attribute of its headers states; the library takes memory for a text
// before it reads it. A header ends with an attribute without a name, and the list of parts with an empty header.
bool openExrHeadersAreWhole(std::istream& file, std::uint64_t size) {
  constexpr std::uint32_t kHasParts = 0x1000;
  file.seekg(kOpenExrSignature.size());
  const bool has_parts = (littleEndian(file) & kHasParts) != 0;
  bool header_is_empty = true;
  std::string name;
  std::string type;
  while (std::getline(file, name, '\0')) {
    if (name.empty()) {
      if (header_is_empty || !has_parts) {
        return true;
      }
      header_is_empty = true;
      continue;
    }
    header_is_empty = false;
    std::getline(file, type, '\0');
    const std::uint64_t length = littleEndian(file);
    const std::streamoff at = file.tellg();
    if (at < 0 || length > size - static_cast<std::uint64_t>(at)) {
      return false;
    }
    file.seekg(at + static_cast<std::streamoff>(length));
  }
  return false;
}

// Whether the file contains all of the user data that its header announces; the library allocates memory for it before
// reading it. A length with all bits set means that there is none.
bool dpxHeadersAreWhole(std::istream& file, std::uint64_t size, bool is_little_endian) {
  constexpr std::streamoff kLengthAt = 32;
  constexpr std::uint64_t kHeaderBytes = 2048;
  constexpr std::uint32_t kUndefined = 0xFFFFFFFF;
  file.seekg(kLengthAt);
  std::uint32_t length = littleEndian(file);
  if (!is_little_endian) {
    length = __builtin_bswap32(length);
  }
  return length == 0 || length == kUndefined || kHeaderBytes + length <= size;
}

}  // namespace

bool isTruncated(const std::string& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  const std::streamoff size = file.tellg();
  if (!file || size < 2) {
    return false;
  }
  std::array<unsigned char, 8> start{};
  file.seekg(0);
  file.read(reinterpret_cast<char*>(start.data()), start.size());
  file.clear();
  if (start == kPngSignature) {
    return !pngIsWhole(file, static_cast<std::uint64_t>(size));
  }
  if (start[0] == 0xFF && start[1] == 0xD8) {
    return !jpegIsWhole(file);
  }
  if (std::equal(kOpenExrSignature.begin(), kOpenExrSignature.end(), start.begin())) {
    return !openExrHeadersAreWhole(file, static_cast<std::uint64_t>(size));
  }
  for (const char* const signature : {"SDPX", "XPDS"}) {
    if (std::memcmp(start.data(), signature, 4) == 0) {
      return !dpxHeadersAreWhole(file, static_cast<std::uint64_t>(size), *signature == 'X');
    }
  }
  return false;
}

}  // namespace vantorel::cli
