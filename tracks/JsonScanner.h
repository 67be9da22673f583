// Reads JSON value by value, without keeping it: memory stays that of the result, and every fault has its line.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tracks/Text.h"

namespace vantorel::tracks {

class JsonScanner {
 public:
  // Both must outlive the object.
  JsonScanner(std::string_view text, std::string_view file) : text_(text), file_(file) {}

  // The character that the next value begins with; '\0' at the end of the text.
  char peek();

  // Takes an object's or array's opening bracket, which must be next.
  void open(char bracket);
  // Moves to the object's next member and tells its name; false, past the closing brace, when there is none. The name
  // is valid until the next call.
  bool nextMember(std::string_view& name);
  // Moves to the array's next element; false, past the closing bracket, when there is none.
  bool nextElement();

  // A number; place() gives the field's name when it is none, or not one of at most kLargestNumber.
  template <typename Place>
  double number(const Place& place) {
    const char first = peek();
    if (first != '-' && (first < '0' || first > '9')) {
      tracks::fail(file_, line_, place(), "is not a number; write one without quotes");
    }
    const std::string_view token = numberToken();
    const std::uint32_t at = line_;
    try {
      return decimalAt(file_, at, "", token);
    } catch (ReadFault& fault) {
      fault.input += ": " + std::string(place());
      throw;
    }
  }

  // A string without its escapes, valid until the next call.
  std::string_view string();
  // Passes over any value.
  void skip();
  // Fails if anything but blanks is left.
  void finish();

  // The line of what was read last, from 1.
  std::uint32_t line() const { return line_; }
  std::string_view file() const { return file_; }
  [[noreturn]] void failSyntax();

 private:
  void skipBlanks();
  bool nextItem(char closing);
  std::string_view numberToken();
  void appendEscape();
  void skipScalar();

  std::string_view text_;
  std::string_view file_;
  std::size_t at_ = 0;
  std::uint32_t line_ = 1;
  std::vector<bool> begun_;  // for each open object or array, whether an item was read
  std::string string_;
};

}  // namespace vantorel::tracks
