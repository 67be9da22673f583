#include "cli/pictures/FileRecord.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "cli/base/Hash64.h"

namespace vantorel::cli {

namespace {

// The record reads "vantorel record <settings> <checksum>", both as sixteen hexadecimal digits.
constexpr std::string_view kMark = "vantorel record ";
constexpr std::size_t kDigits = 16;
constexpr std::size_t kChecksumOffset = kMark.size() + kDigits + 1;
constexpr std::size_t kRecordSize = kChecksumOffset + kDigits;

// A file's bytes in memory; empty where it cannot be mapped.
class MappedFile {
 public:
  MappedFile(const std::string& path, bool writable) {
    const int descriptor = open(path.c_str(), (writable ? O_RDWR : O_RDONLY) | O_CLOEXEC);
    if (descriptor < 0) {
      return;
    }
    struct stat status {};
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0) {
      const auto size = static_cast<std::size_t>(status.st_size);
      const int protection = PROT_READ | (writable ? PROT_WRITE : 0);
      void* const memory = mmap(nullptr, size, protection, MAP_SHARED, descriptor, 0);
      if (memory != MAP_FAILED) {
        bytes_ = {static_cast<std::byte*>(memory), size};
      }
    }
    ::close(descriptor);
  }
  ~MappedFile() {
    if (!bytes_.empty()) {
      munmap(bytes_.data(), bytes_.size());
    }
  }
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  std::span<std::byte> bytes() const { return bytes_; }
  std::string_view text() const { return {reinterpret_cast<const char*>(bytes_.data()), bytes_.size()}; }

 private:
  std::span<std::byte> bytes_;
};

// Where records begin; some formats keep the same text in two places.
std::vector<std::size_t> findRecords(std::string_view file) {
  std::vector<std::size_t> places;
  const std::boyer_moore_horspool_searcher searcher(kMark.begin(), kMark.end());
  for (auto at = std::search(file.begin(), file.end(), searcher); at != file.end();
       at = std::search(at + 1, file.end(), searcher)) {
    if (file.end() - at >= static_cast<std::ptrdiff_t>(kRecordSize)) {
      places.push_back(static_cast<std::size_t>(at - file.begin()));
    }
  }
  return places;
}

std::uint32_t bigEndian(std::span<const std::byte, 4> bytes) {
  std::uint32_t value = 0;
  for (const std::byte byte : bytes) {
    value = value << 8 | static_cast<std::uint32_t>(byte);
  }
  return value;
}

// A chunk of a PNG: length, type, data and a checksum (CRC-32) over type and data.
struct PngChunk {
  std::size_t type = 0;  // where the type begins
  std::size_t crc = 0;   // where the checksum begins; 0 for none
};

// The chunk around that place; none in a file that is not a PNG.
PngChunk chunkAround(std::span<const std::byte> file, std::size_t place) {
  constexpr std::string_view kSignature = "\x89PNG\r\n\x1A\n";
  if (file.size() < kSignature.size() || std::memcmp(file.data(), kSignature.data(), kSignature.size()) != 0) {
    return {};
  }
  std::size_t at = kSignature.size();
  while (at + 12 <= file.size()) {
    const std::size_t crc = at + 8 + bigEndian(file.subspan(at).first<4>());
    if (place < crc) {
      return crc + 4 <= file.size() ? PngChunk{at + 4, crc} : PngChunk{};
    }
    at = crc + 4;
  }
  return {};
}

std::uint32_t crc32(std::span<const std::byte> bytes) {
  std::uint32_t sum = ~std::uint32_t{0};
  for (const std::byte byte : bytes) {
    sum ^= static_cast<std::uint32_t>(byte);
    for (int bit = 0; bit < 8; ++bit) {
      sum = (sum & 1) != 0 ? sum >> 1 ^ 0xEDB88320u : sum >> 1;
    }
  }
  return ~sum;
}

// Covers all bytes except those that sealing changes: the records' checksums, and those of their chunks.
std::uint64_t checksum(std::span<const std::byte> file, const std::vector<std::size_t>& records) {
  Hash64 hash;
  std::size_t begin = 0;
  for (const std::size_t record : records) {
    const std::size_t field = record + kChecksumOffset;
    hash.add(file.subspan(begin, field - begin));
    begin = field + kDigits;
    if (const PngChunk chunk = chunkAround(file, record); chunk.crc != 0) {
      hash.add(file.subspan(begin, chunk.crc - begin));
      begin = chunk.crc + 4;
    }
  }
  hash.add(file.subspan(begin));
  return hash.value();
}

std::string digits(std::uint64_t value) {
  return fmt::format("{:016x}", value);
}

}  // namespace

std::string recordText(std::uint64_t settings) {
  return fmt::format("{}{} {}", kMark, digits(settings), digits(0));
}

bool holdsRecord(const std::string& text) {
  return text.find(kMark) != std::string::npos;
}

bool sealRecord(const std::string& path) {
  const MappedFile mapped(path, true);
  const std::span<std::byte> file = mapped.bytes();
  if (file.empty()) {
    return false;
  }
  const std::vector<std::size_t> records = findRecords(mapped.text());
  const std::string sum = digits(checksum(file, records));
  for (const std::size_t record : records) {
    std::memcpy(file.data() + record + kChecksumOffset, sum.data(), kDigits);
    if (const PngChunk chunk = chunkAround(file, record); chunk.crc != 0) {
      const std::uint32_t crc = crc32(file.subspan(chunk.type, chunk.crc - chunk.type));
      for (std::size_t i = 0; i < 4; ++i) {
        file[chunk.crc + i] = static_cast<std::byte>(crc >> (24 - 8 * i));
      }
    }
  }
  return true;
}

RecordState checkRecord(const std::string& path, std::uint64_t settings) {
  const MappedFile mapped(path, false);
  const std::vector<std::size_t> records = findRecords(mapped.text());
  if (records.empty()) {
    return RecordState::Absent;
  }
  const std::string_view record = mapped.text().substr(records.front(), kRecordSize);
  if (record.substr(kMark.size(), kDigits) != digits(settings)) {
    return RecordState::OtherSettings;
  }
  return record.substr(kChecksumOffset) == digits(checksum(mapped.bytes(), records)) ? RecordState::Matches
                                                                                     : RecordState::Damaged;
}

}  // namespace vantorel::cli
