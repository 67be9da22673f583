// Reads JSON value by value, without building a tree: memory is only needed for the result, and every error has a line.
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

  // The first character of the next value; '\0' at the end of the text.
  char peek();

  // Consumes an object's or array's opening bracket, which must be next.
  void open(char bracket);
  // Moves to the object's next member and returns its name in `name`, which is valid until the next call. False, after
  // consuming the closing brace, if there is none.
  bool nextMember(std::string_view& name);
  // Moves to the array's next element. False, after consuming the closing bracket, if there is none.
  bool nextElement();

  // Reads a number. place() gives the field's name for the error if it is not a number, or larger than kLargestNumber.
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

  // Reads a string and decodes its escapes; valid until the next call.
  std::string_view string();
  // Skips any value.
  void skip();
  // Fails if anything but white space is left.
  void finish();

  // The line of the last thing that was read, from 1.
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
  std::vector<bool> begun_;  // for each open object or array, whether an item has been read
  std::string string_;
};

}  // namespace vantorel::tracks
