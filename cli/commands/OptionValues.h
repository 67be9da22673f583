// The values of options: each function returns what the text stands for, or throws CommandError naming the option.
#pragma once

#include <fmt/format.h>

#include <initializer_list>
#include <string>
#include <utility>

#include "cli/base/CommandError.h"

namespace vantorel::cli {

// The value that the word stands for.
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

// The name of a file, which is anything but empty: a shell variable that is not set gives an empty one.
inline std::string parseFileName(const std::string& option, const std::string& text) {
  if (text.empty()) {
    throw badArgument(option, "is an empty file name; give one or omit the option");
  }
  return text;
}

}  // namespace vantorel::cli
