#include "cli/pictures/MetadataBlocks.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string_view>

#include "cli/pictures/FormatLibrary.h"
#include "cli/pictures/PngText.h"

namespace vantorel::cli {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view kExifMark = "Exif\0\0"sv;
constexpr std::string_view kXmpMark = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr int kApp0 = 0xE0;
constexpr int kApp1 = 0xE1;
constexpr int kFirstOfScan = 0xDA;

std::string bigEndian(std::uint32_t value, int size) {
  std::string bytes;
  for (int i = size - 1; i >= 0; --i) {
    bytes += static_cast<char>(value >> (8 * i) & 0xFF);
  }
  return bytes;
}

// The segments before the picture: calls visit(marker, data) for each.
template <typename Visit>
void forSegments(std::istream& file, const Visit& visit) {
  std::array<unsigned char, 4> head{};
  file.seekg(2);
  while (file.read(reinterpret_cast<char*>(head.data()), head.size())) {
    const int size = head[2] * 256 + head[3] - 2;
    if (head[0] != 0xFF || head[1] == kFirstOfScan || size < 0) {
      return;
    }
    std::string data(static_cast<std::size_t>(size), '\0');
    if (!file.read(data.data(), size)) {
      return;
    }
    visit(head[1], data);
  }
}

std::string contentsOf(OutputFile& file) {
  std::FILE* const stream = file.stream();
  file.note(std::fseek(stream, 0, SEEK_END) == 0);
  std::string bytes(static_cast<std::size_t>(std::max(0L, std::ftell(stream))), '\0');
  file.note(std::fseek(stream, 0, SEEK_SET) == 0);
  file.note(std::fread(bytes.data(), 1, bytes.size(), stream) == bytes.size());
  return bytes;
}

// Puts the bytes at that place of the file, before what is there.
void insert(OutputFile& file, std::string contents, std::size_t place, const std::string& bytes) {
  contents.insert(place, bytes);
  file.note(std::fseek(file.stream(), 0, SEEK_SET) == 0);
  file.note(std::fwrite(contents.data(), 1, contents.size(), file.stream()) == contents.size());
}

// Behind what readers want first, JFIF's segment and EXIF's.
std::size_t placeOfXmp(const std::string& jpeg) {
  std::size_t place = 2;
  const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(jpeg[at]); };
  while (place + 4 <= jpeg.size() && byte(place) == 0xFF && (byte(place + 1) == kApp0 || byte(place + 1) == kApp1)) {
    place += 2 + byte(place + 2) * 256u + byte(place + 3);
  }
  return std::min(place, jpeg.size());
}

void insertXmp(OutputFile& file, const std::string& xmp) {
  const std::string segment = std::string(kXmpMark) + xmp;
  const std::string head = "\xFF\xE1" + bigEndian(static_cast<std::uint32_t>(segment.size() + 2), 2);
  std::string jpeg = contentsOf(file);
  const std::size_t place = placeOfXmp(jpeg);
  insert(file, std::move(jpeg), place, head + segment);
}

void insertExif(OutputFile& file, const std::string& exif) {
  constexpr std::size_t kEndOfHeader = 33;
  const std::string data = "eXIf" + exif;
  const auto sum =
      static_cast<std::uint32_t>(crc32(0, reinterpret_cast<const Bytef*>(data.data()), static_cast<uInt>(data.size())));
  insert(file, contentsOf(file), kEndOfHeader,
         bigEndian(static_cast<std::uint32_t>(exif.size()), 4) + data + bigEndian(sum, 4));
}

// A number that only EXIF holds; PNG's texts hold the rest.
bool isExifNumber(const Attribute& attribute) {
  constexpr std::array kNames{"FNumber"sv, "ExposureTime"sv};
  const std::string& name = attribute.name;
  return !attribute.isText() && name != "Exif:ColorSpace" &&
         (name.starts_with("Exif:") || name.starts_with("GPS:") ||
          std::ranges::find(kNames, std::string_view(name)) != kNames.end());
}

}  // namespace

JpegBlocks readJpegBlocks(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  JpegBlocks blocks;
  forSegments(file, [&](int marker, const std::string& data) {
    if (marker == kApp1 && data.starts_with(kExifMark) && blocks.exif.empty()) {
      blocks.exif = data.substr(kExifMark.size());
    } else if (marker == kApp1 && data.starts_with(kXmpMark) && blocks.xmp.empty()) {
      blocks.xmp = data.substr(kXmpMark.size());
    }
  });
  return blocks;
}

void insertBlocks(OutputFile& file, const ImageFormat& format, const Metadata& metadata) {
  const std::string_view writer = format.writer;
  if (const std::string xmp = metadata.text(kXmpKey); writer == "jpeg" && !xmp.empty()) {
    insertXmp(file, xmp);
  }
  if (writer == "png" && std::ranges::any_of(metadata.attributes(), isExifNumber)) {
    insertExif(file, formatLibrary().exif_of(metadata));
  }
}

}  // namespace vantorel::cli
