#include "cli/pictures/Encoding.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include "cli/base/CommandError.h"
#include "cli/base/NumberParsing.h"

namespace vantorel::cli {

namespace {

struct KnownCompression {
  std::string_view name;
  double most_level = 0.0;  // from 1 on for whole numbers, from 0 on for others; 0: it has none
  bool whole_levels = true;
};

constexpr double kMostLoss = 100000.0;
constexpr std::array kCompressions{
    KnownCompression{"none"},
    KnownCompression{"rle"},
    KnownCompression{"zips", 9.0},
    KnownCompression{"zip", 9.0},
    KnownCompression{"piz"},
    KnownCompression{"pxr24"},
    KnownCompression{"b44"},
    KnownCompression{"b44a"},
    KnownCompression{"dwaa", kMostLoss, false},
    KnownCompression{"dwab", kMostLoss, false},
    KnownCompression{"lzw"},
    KnownCompression{"packbits"},
};

std::string commaSeparated(std::string words) {
  for (std::size_t at = words.find(' '); at != std::string::npos; at = words.find(' ', at + 2)) {
    words.replace(at, 1, ", ");
  }
  return words;
}

bool lists(std::string_view words, const std::string& word) {
  return (std::string(words) + ' ').find(word + ' ') != std::string::npos;
}

void requireFormat(const ImageFormat& format, const char* wanted, const char* option, bool given) {
  if (given && std::string_view(format.name) != wanted) {
    throw badArgument(option, fmt::format("applies to {} files, but the output is {}; omit it", wanted, format.name));
  }
}

}  // namespace

Compression parseCompression(const std::string& option, const std::string& text) {
  const std::size_t colon = text.find(':');
  const std::string name = text.substr(0, colon);
  const auto known = std::ranges::find(kCompressions, name, &KnownCompression::name);
  if (known == kCompressions.end()) {
    std::vector<std::string_view> names;
    std::ranges::transform(kCompressions, std::back_inserter(names), &KnownCompression::name);
    throw badArgument(option, fmt::format("'{}' is not known; give one of {}", name, fmt::join(names, ", ")));
  }
  if (colon == std::string::npos) {
    return {name, std::nullopt};
  }
  const std::string level_text = text.substr(colon + 1);
  if (known->most_level == 0.0) {
    throw badArgument(option, fmt::format("'{}' has no levels; omit ':{}'", name, level_text));
  }
  const auto level = parseNumber(level_text);
  const double least = known->whole_levels ? 1.0 : 0.0;
  if (!level || *level < least || *level > known->most_level ||
      (known->whole_levels && *level != static_cast<int>(*level))) {
    throw badArgument(option, fmt::format("'{}' is not a level of '{}'; give a {}number from {} to {}", level_text,
                                          name, known->whole_levels ? "whole " : "", least, known->most_level));
  }
  return {name, *level};
}

void requireEncodingHeld(const ImageFormat& format, const Encoding& encoding) {
  const std::string& name = encoding.compression.name;
  if (!name.empty() && format.compressions[0] == '\0') {
    throw badArgument("--compression", fmt::format("{} files have only one compression; omit it", format.name));
  }
  if (!name.empty() && !lists(format.compressions, name)) {
    throw badArgument("--compression", fmt::format("{} files cannot be packed by '{}'; give one of {}", format.name,
                                                   name, commaSeparated(format.compressions)));
  }
  requireFormat(format, "JPEG", "--jpeg-quality", encoding.jpeg_quality.has_value());
  requireFormat(format, "PNG", "--png-level", encoding.png_level.has_value());
}

}  // namespace vantorel::cli
