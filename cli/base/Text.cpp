#include "cli/base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace vantorel::cli {

namespace {

// The length in bytes of the UTF-8 character at the beginning of the text; 0 if it is invalid or a control character.
std::size_t printableLength(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte(0);
  if (first < 0x80) {
    return first >= 0x20 && first != 0x7F ? 1 : 0;
  }
  const std::size_t length = first >= 0xF0 ? 4 : (first >= 0xE0 ? 3 : 2);
  if (first < 0xC2 || first > 0xF4 || text.size() < length) {
    return 0;
  }
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) {
      return 0;
    }
  }
  // U+0080 to U+009F are control characters too.
  return first == 0xC2 && byte(1) < 0xA0 ? 0 : length;
}

}  // namespace

std::string lowerCaseExtension(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension;
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string_view withoutByteOrderMark(std::string_view text) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  return text.substr(0, kByteOrderMark.size()) == kByteOrderMark ? text.substr(kByteOrderMark.size()) : text;
}

std::string oneLine(std::string reason) {
  std::replace(reason.begin(), reason.end(), '\n', ' ');
  while (!reason.empty() && (reason.back() == ' ' || reason.back() == '.')) {
    reason.pop_back();
  }
  return reason.empty() ? "no reason given" : reason;
}

std::string escaped(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const std::size_t length = printableLength(text);
    if (length == 0) {
      shown += fmt::format("\\x{:02x}", static_cast<unsigned char>(text.front()));
    }
    shown += text.substr(0, length);
    text.remove_prefix(std::max<std::size_t>(1, length));
  }
  return shown;
}

std::string counted(std::int64_t count, const char* noun) {
  return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

std::string toText(host::Size size) {
  return fmt::format("{}x{}", size.width, size.height);
}

}  // namespace vantorel::cli
