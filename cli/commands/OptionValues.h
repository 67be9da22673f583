// Parses option values. Each function returns the value, or throws CommandError naming the option.
#pragma once

#include <fmt/format.h>

#include <initializer_list>
#include <string>
#include <utility>

#include "cli/base/CommandError.h"
#include "cli/base/NumberParsing.h"
#include "cli/pictures/Enlarge.h"

namespace vantorel::cli {

// The value for one of the known words.
template <typename Value>
Value parseChoice(const std::string& option, const std::string& word,
                  std::initializer_list<std::pair<const char*, Value>> choices) {
  std::string known;
  for (const auto& [name, value] : choices) {
    if (word == name) {
      return value;
    }
    known += (known.empty() ? "" : ", ") + std::string(name);
  }
  throw badArgument(option, fmt::format("'{}' is not known; give one of {}", word, known));
}

inline EnlargeFilter parseEnlargeFilter(const std::string& option, const std::string& word) {
  return parseChoice<EnlargeFilter>(option, word,
                                    {{"bilinear", EnlargeFilter::Bilinear},
                                     {"bicubic", EnlargeFilter::Bicubic},
                                     {"lanczos", EnlargeFilter::Lanczos}});
}

// A fraction from 0 to 1: "0.25" or "25%".
inline double parseShare(const std::string& option, const std::string& text) {
  const bool percent = !text.empty() && text.back() == '%';
  const auto value = parseNumber(percent ? text.substr(0, text.size() - 1) : text);
  const double share = value ? *value / (percent ? 100.0 : 1.0) : -1.0;
  if (!(share >= 0.0 && share <= 1.0)) {
    throw badArgument(option, fmt::format("'{}' is not a share; give a number from 0 to 1, or 0% to 100%", text));
  }
  return share;
}

// A number from `least` to `most`.
inline double parseNumberInRange(const std::string& option, const std::string& text, double least, double most) {
  const auto value = parseNumber(text);
  if (!value || *value < least || *value > most) {
    throw badArgument(option, fmt::format("'{}' is not a number from {} to {}; give one", text, least, most));
  }
  return *value;
}

// A file name, which must not be empty: an unset shell variable gives an empty one.
inline std::string parseFileName(const std::string& option, const std::string& text) {
  if (text.empty()) {
    throw badArgument(option, "is an empty file name; give one or omit the option");
  }
  return text;
}

}  // namespace vantorel::cli
