#include "tracks/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace vantorel::tracks {

namespace {

constexpr std::size_t kLongestQuote = 40;
constexpr const char* kNumberHint = "expected a number such as 640.5";

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r';
}

// Parses the whole text as a number. On failure `fault` is a phrase that continues "'<text>' ...".
bool parseDecimal(std::string_view text, double& value, const char*& fault) {
  if (text.size() > 1 && text.front() == '+' && text[1] != '-') {
    text.remove_prefix(1);
  }
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range) {
    fault = "is too large for a number";
  } else if (error != std::errc() || end != text.data() + text.size()) {
    fault = text.empty() ? "is empty" : "is not a number";
  } else if (!std::isfinite(value)) {
    fault = "is not finite";
  } else if (std::abs(value) > kLargestNumber) {
    fault = "is far outside any picture or clip";
  } else {
    return true;
  }
  return false;
}

}  // namespace

void fail(std::string_view file, std::uint32_t line, std::string_view field, const std::string& message) {
  std::string input(file);
  if (line != 0) {
    input += fmt::format(": line {}", line);
  }
  if (!field.empty()) {
    input += fmt::format(": {}", field);
  }
  throw ReadFault{std::move(input), message};
}

std::string quoted(std::string_view text) {
  std::string result(text.substr(0, kLongestQuote));
  std::replace_if(
      result.begin(), result.end(), [](unsigned char c) { return c < 0x20 || c == 0x7f; }, '?');
  return fmt::format("'{}{}'", result, text.size() > kLongestQuote ? "..." : "");
}

std::string_view withoutByteOrderMark(std::string_view text) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
    text.remove_prefix(kByteOrderMark.size());
  }
  return text;
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && isBlank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

std::string counted(std::size_t count, std::string_view noun) {
  return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

std::string lowerCase(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return result;
}

bool isNumber(std::string_view text) {
  double value = 0.0;
  const char* fault = nullptr;
  return parseDecimal(text, value, fault);
}

double decimalAt(std::string_view file, std::uint32_t line, std::string_view field, std::string_view text) {
  double value = 0.0;
  const char* fault = nullptr;
  if (!parseDecimal(text, value, fault)) {
    fail(file, line, field, fmt::format("{} {}; {}", quoted(text), fault, kNumberHint));
  }
  return value;
}

std::string printed(double value, int decimals) {
  std::string text = fmt::format("{:.{}f}", value, decimals);
  if (decimals > 0) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
      text.pop_back();
    }
  }
  return text == "-0" ? "0" : text;
}

bool Lines::next() {
  if (after_carriage_return_ && !rest_.empty() && rest_.front() == '\n') {
    rest_.remove_prefix(1);
  }
  after_carriage_return_ = false;
  if (rest_.empty()) {
    return false;
  }
  const auto end = std::find_if(rest_.begin(), rest_.end(), [](char c) { return c == '\n' || c == '\r'; });
  const auto length = static_cast<std::size_t>(end - rest_.begin());
  line_ = trimmed(rest_.substr(0, length));
  after_carriage_return_ = end != rest_.end() && *end == '\r';
  rest_.remove_prefix(std::min(length + 1, rest_.size()));
  ++number_;
  return true;
}

bool Lines::nextContent(std::string_view comments) {
  while (next()) {
    if (!line_.empty() && comments.find(line_.front()) == std::string_view::npos) {
      return true;
    }
  }
  return false;
}

void Lines::needContent(std::string_view expected, std::string_view comments) {
  if (!nextContent(comments)) {
    fail("", fmt::format("is truncated; expected {}", expected));
  }
}

void Lines::fail(std::string_view field, const std::string& message) const {
  tracks::fail(file_, number_, field, message);
}

double Lines::decimal(std::string_view text, std::string_view field, bool decimal_comma) const {
  if (decimal_comma && text.find(',') != std::string_view::npos) {
    std::string with_point(text);
    with_point[text.find(',')] = '.';
    return decimalAt(file_, number_, field, with_point);
  }
  return decimalAt(file_, number_, field, text);
}

std::uint32_t Lines::whole(std::string_view text, std::string_view field) const {
  std::uint32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() ||
      value > std::uint32_t{std::numeric_limits<std::int32_t>::max()}) {
    fail(field, fmt::format("{} is not a whole number; expected one such as 100", quoted(text)));
  }
  return value;
}

std::size_t splitWords(std::string_view line, std::vector<std::string_view>& words, std::string_view also) {
  words.clear();
  const auto separates = [&](char c) { return isBlank(c) || also.find(c) != std::string_view::npos; };
  std::size_t at = 0;
  while (at < line.size()) {
    if (separates(line[at])) {
      ++at;
    } else if (line[at] == '"') {
      const std::size_t end = std::min(line.find('"', at + 1), line.size());
      words.push_back(line.substr(at + 1, end - at - 1));
      at = end + 1;
    } else {
      const std::size_t start = at;
      while (at < line.size() && !separates(line[at])) {
        ++at;
      }
      words.push_back(line.substr(start, at - start));
    }
  }
  return words.size();
}

std::string_view Words::next() {
  constexpr std::string_view kAlone = "{}()";
  quoted_ = false;
  while (at_ < text_.size() && (isBlank(text_[at_]) || text_[at_] == '\n')) {
    line_ += text_[at_] == '\n' ? 1u : 0u;
    ++at_;
  }
  if (at_ == text_.size()) {
    return {};
  }
  const std::size_t start = at_;
  if (text_[at_] == '"') {
    const std::size_t end = std::min(text_.find('"', at_ + 1), text_.size());
    const std::string_view word = text_.substr(start + 1, end - start - 1);
    line_ += static_cast<std::uint32_t>(std::count(word.begin(), word.end(), '\n'));
    at_ = std::min(end + 1, text_.size());
    quoted_ = true;
    return word;
  }
  if (kAlone.find(text_[at_]) != std::string_view::npos) {
    return text_.substr(at_++, 1);
  }
  at_ = std::min(text_.find_first_of(" \t\r\n{}()\"", at_), text_.size());
  return text_.substr(start, at_ - start);
}

std::string_view Words::peek() {
  const Words before = *this;
  const std::string_view word = next();
  *this = before;
  return word;
}

void Words::expect(std::string_view word, std::string_view field) {
  const std::string_view found = next();
  if (found != word) {
    fail(field, found.empty() && !quoted_ ? fmt::format("is truncated; expected '{}'", word)
                                          : fmt::format("reads {} where '{}' is expected", quoted(found), word));
  }
}

void Words::skipGroup() {
  for (std::size_t depth = 1; depth > 0;) {
    const std::string_view word = next();
    if (word.empty() && !quoted_) {
      fail("", "is truncated; a closing brace or parenthesis is missing");
    }
    if (!quoted_) {
      depth += word == "{" || word == "(" ? 1u : 0u;
      depth -= word == "}" || word == ")" ? 1u : 0u;
    }
  }
}

double Words::decimal(std::string_view field) {
  const std::string_view word = next();
  if (word.empty() && !quoted_) {
    fail(field, "is truncated; expected a number");
  }
  return decimalAt(file_, line_, field, word);
}

void Words::fail(std::string_view field, const std::string& message) const {
  tracks::fail(file_, line_, field, message);
}

}  // namespace vantorel::tracks
