#include "cli/base/FramePattern.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <string_view>

#include "cli/base/CommandError.h"
#include "cli/base/NumberParsing.h"

namespace vantorel::cli {

namespace fs = std::filesystem;

namespace {

constexpr int kWidestNumber = 20;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

FramePattern FramePattern::literal(const std::string& text) {
  FramePattern pattern;
  pattern.text_ = text;
  pattern.before_ = text;
  return pattern;
}

FramePattern FramePattern::parse(const std::string& input, const std::string& text) {
  FramePattern pattern;
  pattern.text_ = text;
  const auto place_number = [&](int width, bool zero_padded) {
    if (pattern.has_number_) {
      throw badArgument(input, fmt::format("'{}' has two placeholders for the frame number; keep one", text));
    }
    if (width > kWidestNumber) {
      throw badArgument(input, fmt::format("'{}' asks for {} digits; give at most {}", text, width, kWidestNumber));
    }
    pattern.has_number_ = true;
    pattern.width_ = width;
    pattern.zero_padded_ = zero_padded;
  };
  std::size_t at = 0;
  while (at < text.size()) {
    std::string& part = pattern.has_number_ ? pattern.after_ : pattern.before_;
    if (text[at] == '#') {
      const std::size_t end = std::min(text.find_first_not_of('#', at), text.size());
      place_number(static_cast<int>(std::min<std::size_t>(end - at, kWidestNumber + 1)), true);
      at = end;
    } else if (text[at] != '%') {
      part += text[at++];
    } else if (text.compare(at, 2, "%%") == 0) {
      part += '%';
      at += 2;
    } else {
      std::size_t end = at + 1;
      const bool zero_padded = end < text.size() && text[end] == '0';
      int width = 0;
      for (; end < text.size() && isDigit(text[end]); ++end) {
        width = std::min(width * 10 + (text[end] - '0'), kWidestNumber + 1);
      }
      if (end == text.size() || text[end] != 'd') {
        throw badArgument(input,
                          fmt::format("'{}' has a % that is not a frame number; write %04d or ####, and %% for a "
                                      "percent sign",
                                      text));
      }
      place_number(width, zero_padded);
      at = end + 1;
    }
  }
  return pattern;
}

std::optional<FramePattern::Numbers> FramePattern::existing() const {
  // The number may also be part of a folder's name.
  const std::string folder = before_.substr(0, before_.rfind('/') + 1);
  std::optional<Numbers> numbers;
  std::error_code fault;
  for (fs::directory_iterator entry(folder.empty() ? "." : folder, fault), end; !fault && entry != end;
       entry.increment(fault)) {
    const std::string name = folder + entry->path().filename().string();
    if (name.compare(0, before_.size(), before_) != 0) {
      continue;
    }
    const std::size_t number_end = name.find_first_not_of("-0123456789", before_.size());
    const auto number = parseInt(std::string_view(name).substr(before_.size(), number_end - before_.size()));
    std::error_code missing;
    if (number && path(*number).compare(0, name.size(), name) == 0 && fs::exists(path(*number), missing)) {
      numbers = numbers ? Numbers{std::min(numbers->first, *number), std::max(numbers->last, *number)}
                        : Numbers{*number, *number};
    }
  }
  return numbers;
}

std::string FramePattern::path(std::int32_t frame) const {
  if (!has_number_) {
    return before_;
  }
  const std::string number =
      zero_padded_ ? fmt::format("{:0{}d}", frame, width_) : fmt::format("{:{}d}", frame, width_);
  return before_ + number + after_;
}

}  // namespace vantorel::cli
