#include "cli/base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace vantorel::cli {

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

std::string toText(host::Size size) {
  return fmt::format("{}x{}", size.width, size.height);
}

}  // namespace vantorel::cli
