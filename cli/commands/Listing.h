// A table of labels and lines, as printed by `vantorel info`.
#pragma once

#include <fmt/format.h>

#include <string>

namespace vantorel::cli {

// Of several lines with the same label, only the first shows it.
class Listing {
 public:
  void add(const std::string& label, const std::string& line) {
    text_ += fmt::format("{:14} {}\n", label == last_ ? "" : label, line);
    last_ = label;
  }
  const std::string& text() const { return text_; }

 private:
  std::string text_;
  std::string last_;
};

}  // namespace vantorel::cli
