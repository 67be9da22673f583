#include "tracks/JsonScanner.h"

#include <algorithm>
#include <charconv>

namespace vantorel::tracks {

namespace {

constexpr std::size_t kDeepest = 64;

bool isInNumber(char c) {
  return (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || c == 'e' || c == 'E';
}

void appendUtf8(std::string& text, unsigned code) {
  const auto add = [&](unsigned byte) { text += static_cast<char>(byte); };
  if (code < 0x80) {
    add(code);
  } else if (code < 0x800) {
    add(0xC0 | code >> 6);
    add(0x80 | (code & 0x3F));
  } else {
    add(0xE0 | code >> 12);
    add(0x80 | (code >> 6 & 0x3F));
    add(0x80 | (code & 0x3F));
  }
}

}  // namespace

void JsonScanner::failSyntax() {
  tracks::fail(file_, line_, "", "is not valid JSON; check quotes, commas and brackets there");
}

void JsonScanner::skipBlanks() {
  while (at_ < text_.size()) {
    const char c = text_[at_];
    if (c == '\n') {
      ++line_;
    } else if (c != ' ' && c != '\t' && c != '\r') {
      return;
    }
    ++at_;
  }
}

char JsonScanner::peek() {
  skipBlanks();
  return at_ < text_.size() ? text_[at_] : '\0';
}

void JsonScanner::open(char bracket) {
  if (peek() != bracket || begun_.size() == kDeepest) {
    failSyntax();
  }
  ++at_;
  begun_.push_back(false);
}

bool JsonScanner::nextItem(char closing) {
  const char next = peek();
  if (next == closing) {
    ++at_;
    begun_.pop_back();
    return false;
  }
  if (begun_.back()) {
    if (next != ',') {
      failSyntax();
    }
    ++at_;
  }
  if (const char item = peek(); item == '\0' || item == ',' || item == '}' || item == ']') {
    failSyntax();
  }
  begun_.back() = true;
  return true;
}

bool JsonScanner::nextMember(std::string_view& name) {
  if (!nextItem('}')) {
    return false;
  }
  name = string();
  if (peek() != ':') {
    failSyntax();
  }
  ++at_;
  return true;
}

bool JsonScanner::nextElement() {
  return nextItem(']');
}

std::string_view JsonScanner::numberToken() {
  const std::size_t start = at_;
  while (at_ < text_.size() && isInNumber(text_[at_])) {
    ++at_;
  }
  const std::string_view token = text_.substr(start, at_ - start);
  const std::string_view digits = token.substr(token.front() == '-' ? 1 : 0);
  const bool begins_badly = digits.empty() || digits.front() < '0' || digits.front() > '9' ||
                            (digits.size() > 1 && digits[0] == '0' && digits[1] >= '0' && digits[1] <= '9');
  if (begins_badly || token.back() < '0' || token.back() > '9') {
    failSyntax();
  }
  return token;
}

void JsonScanner::appendEscape() {
  constexpr std::string_view kNames = "\"\\/bfnrt";
  constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
  const char name = at_ < text_.size() ? text_[at_++] : '\0';
  if (name == 'u' && text_.size() - at_ >= 4) {
    unsigned code = 0;
    const char* digits = text_.data() + at_;
    if (std::from_chars(digits, digits + 4, code, 16).ptr != digits + 4) {
      failSyntax();
    }
    at_ += 4;
    appendUtf8(string_, code);
    return;
  }
  const std::size_t meaning = kNames.find(name);
  if (name == '\0' || meaning == std::string_view::npos) {
    failSyntax();
  }
  string_ += kMeanings[meaning];
}

std::string_view JsonScanner::string() {
  if (peek() != '"') {
    failSyntax();
  }
  ++at_;
  string_.clear();
  while (true) {
    const std::size_t begin = at_;
    while (at_ < text_.size() && text_[at_] != '"' && text_[at_] != '\\' && text_[at_] != '\n') {
      ++at_;
    }
    if (at_ == text_.size() || text_[at_] == '\n') {
      failSyntax();
    }
    string_ += text_.substr(begin, at_ - begin);
    if (text_[at_++] == '"') {
      return string_;
    }
    appendEscape();
  }
}

void JsonScanner::skipScalar() {
  const char next = peek();
  if (next == '"') {
    string();
  } else if (next == '-' || (next >= '0' && next <= '9')) {
    numberToken();
  } else {
    for (const std::string_view word : {"true", "false", "null"}) {
      if (text_.substr(at_, word.size()) == word) {
        at_ += word.size();
        return;
      }
    }
    failSyntax();
  }
}

void JsonScanner::skip() {
  std::string closings;
  std::string_view name;
  do {
    const bool goes_on = closings.empty() || (closings.back() == '}' ? nextMember(name) : nextElement());
    if (!goes_on) {
      closings.pop_back();
    } else if (peek() == '{' || peek() == '[') {
      closings += peek() == '{' ? '}' : ']';
      open(peek());
    } else {
      skipScalar();
    }
  } while (!closings.empty());
}

void JsonScanner::finish() {
  if (peek() != '\0' || at_ < text_.size()) {
    failSyntax();
  }
}

}  // namespace vantorel::tracks
