#include "cli/colour/PngColour.h"

#include <array>
#include <cstring>
#include <fstream>
#include <span>
#include <string_view>
#include <vector>

namespace vantorel::cli {

namespace {

std::uint32_t bigEndian(const unsigned char* bytes) {
  return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 | bytes[3];
}

double hundredThousandths(std::span<const unsigned char> data, std::size_t index) {
  return bigEndian(data.data() + 4 * index) / 100000.0;
}

void take(std::string_view type, std::span<const unsigned char> data, PngColour& colour) {
  if (type == "sRGB") {
    colour.has_srgb = true;
  } else if (type == "gAMA" && data.size() == 4) {
    colour.gamma = hundredThousandths(data, 0);
  } else if (type == "cICP" && data.size() == 4) {
    colour.cicp = CodingPoints{data[0], data[1]};
  } else if (type == "cHRM" && data.size() == 32) {
    const auto at = [&](std::size_t i) {
      return Chromaticity{hundredThousandths(data, 2 * i), hundredThousandths(data, 2 * i + 1)};
    };
    colour.primaries = Primaries{at(1), at(2), at(3), at(0)};
  }
}

}  // namespace

std::optional<PngColour> readPngColour(const std::string& path) {
  constexpr std::string_view kSignature = "\x89PNG\r\n\x1A\n";
  constexpr std::uint32_t kLongest = 32;  // of the chunks that are read
  constexpr std::streamoff kCheck = 4;
  std::ifstream file(path, std::ios::binary);
  std::array<unsigned char, 8> head{};
  const auto read_head = [&] { return bool(file.read(reinterpret_cast<char*>(head.data()), head.size())); };
  if (!read_head() || std::memcmp(head.data(), kSignature.data(), kSignature.size()) != 0) {
    return std::nullopt;
  }
  PngColour colour;
  while (read_head()) {
    const std::uint32_t length = bigEndian(head.data());
    const std::string_view type(reinterpret_cast<const char*>(head.data()) + 4, 4);
    if (type == "IDAT" || type == "IEND") {
      return colour;
    }
    if (length > kLongest) {
      file.seekg(length + kCheck, std::ios::cur);
      continue;
    }
    std::vector<unsigned char> data(length);
    file.read(reinterpret_cast<char*>(data.data()), length);
    file.seekg(kCheck, std::ios::cur);
    take(type, data, colour);
  }
  return std::nullopt;
}

}  // namespace vantorel::cli
