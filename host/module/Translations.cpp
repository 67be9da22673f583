#include "host/module/Translations.h"

#include "host/Error.h"
#include "host/checking/OutOfMemory.h"

namespace vantorel::host {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::size_t skipDigits(std::string_view text, std::size_t at) {
  const std::size_t end = text.find_first_not_of("0123456789", at);
  return end == std::string_view::npos ? text.size() : end;
}

// Skips a width or precision at `at`; appends a '*' to `placeholder` if it is taken from the arguments.
std::size_t readNumber(std::string_view text, std::size_t at, std::string* placeholder) {
  if (at < text.size() && text[at] == '*') {
    placeholder->push_back('*');
    return at + 1;
  }
  return skipDigits(text, at);
}

Result<Translations> readTranslations(const std::string& text, const std::string& name) {
  Translations translations;
  std::string_view rest = text;
  if (rest.starts_with(kByteOrderMark)) {
    rest.remove_prefix(kByteOrderMark.size());
  }
  for (int number = 1; !rest.empty(); ++number) {
    const std::size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    if (line.ends_with('\r')) {
      line.remove_suffix(1);
    }
    if (line.find_first_not_of(" \t") == std::string_view::npos || line.front() == '#') {
      continue;
    }
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos || equals == 0) {
      return invalidArgument(name, "line " + std::to_string(number) + " is not of the form key=text");
    }
    if (line.find('\0') != std::string_view::npos) {
      return invalidArgument(name, "line " + std::to_string(number) + " contains a zero byte");
    }
    translations.insert_or_assign(std::string(line.substr(0, equals)), std::string(line.substr(equals + 1)));
  }
  return translations;
}

}  // namespace

std::vector<std::string> printfPlaceholders(std::string_view text) {
  std::vector<std::string> placeholders;
  for (std::size_t at = text.find('%'); at != std::string_view::npos; at = text.find('%', at)) {
    ++at;
    if (at < text.size() && text[at] == '%') {
      ++at;
      continue;
    }
    std::string placeholder;
    while (at < text.size() && std::string_view("-+ #0'").find(text[at]) != std::string_view::npos) {
      ++at;
    }
    at = readNumber(text, at, &placeholder);
    if (at < text.size() && text[at] == '.') {
      at = readNumber(text, at + 1, &placeholder);
    }
    while (at < text.size() && std::string_view("hljztL").find(text[at]) != std::string_view::npos) {
      placeholder.push_back(text[at++]);
    }
    placeholder.push_back(at < text.size() ? text[at++] : '%');
    placeholders.push_back(placeholder);
  }
  return placeholders;
}

Result<Translations> parseTranslations(const std::string& text, const std::string& name) {
  return withMemoryErrors("translations", [&] { return readTranslations(text, name); });
}

}  // namespace vantorel::host
