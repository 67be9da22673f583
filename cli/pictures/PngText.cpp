#include "cli/pictures/PngText.h"

#include <strings.h>

#include <array>
#include <charconv>
#include <utility>

namespace vantorel::cli {

namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 3> kNames{{
    {"Description", "ImageDescription"},
    {"Author", "Artist"},
    {"Title", "DocumentName"},
}};

bool sameName(std::string_view a, std::string_view b) {
  return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

int digitOf(char digit) {
  int value = -1;
  std::from_chars(&digit, &digit + 1, value, 16);
  return value;
}

}  // namespace

std::string attributeOfKeyword(std::string_view keyword) {
  for (const auto& [key, attribute] : kNames) {
    if (sameName(keyword, key)) {
      return std::string(attribute);
    }
  }
  return std::string(keyword);
}

std::string keywordOfAttribute(std::string_view attribute) {
  for (const auto& [key, name] : kNames) {
    if (sameName(attribute, name)) {
      return std::string(key);
    }
  }
  return std::string(attribute);
}

std::string uprightXmp(std::string packet) {
  for (const std::string_view name : {"tiff:Orientation=\"", "tiff:Orientation='", "<tiff:Orientation>"}) {
    const std::size_t value = packet.find(name) + name.size();
    if (value >= name.size() && value < packet.size()) {
      packet[value] = '1';
    }
  }
  return packet;
}

// "\nexif\n      42\n4578696600004d4d...": the block's name and its size, then its digits in lines.
std::string exifOfText(std::string_view text) {
  std::size_t begin = 0;
  for (int lines = 0; lines < 3; ++lines) {
    begin = text.find('\n', begin);
    if (begin == std::string_view::npos) {
      return "";
    }
    ++begin;
  }
  std::string block;
  int high = -1;
  for (const char digit : text.substr(begin)) {
    const int value = digitOf(digit);
    if (value < 0) {
      continue;
    }
    if (high >= 0) {
      block += static_cast<char>(high * 16 + value);
    }
    high = high >= 0 ? -1 : value;
  }
  constexpr std::string_view kMark("Exif\0\0", 6);
  return block.starts_with(kMark) ? block.substr(kMark.size()) : "";
}

}  // namespace vantorel::cli
