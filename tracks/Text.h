// Reads text line by line or word by word; errors name file, line and field. Nothing here depends on the locale.
// Readers throw ReadFault; the library's public functions convert it to an Error.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vantorel::tracks {

// Larger positions and frame numbers count as errors.
constexpr double kLargestNumber = 1e9;

struct ReadFault {
  std::string input;    // "track.txt: line 7: x"
  std::string message;  // "'twelve' is not a number; expected ..."
};

// Throws a ReadFault for the field on that line; a `line` of 0 and an empty field are left out of the message.
[[noreturn]] void fail(std::string_view file, std::uint32_t line, std::string_view field, const std::string& message);

// The text in quotes for messages: at most 40 bytes, control characters replaced.
std::string quoted(std::string_view text);

// The text without a byte order mark.
std::string_view withoutByteOrderMark(std::string_view text);

// Without blanks, tabs and carriage returns at both ends.
std::string_view trimmed(std::string_view text);

// "1 field", "3 fields".
std::string counted(std::size_t count, std::string_view noun);

std::string lowerCase(std::string_view text);

bool isNumber(std::string_view text);

// The lines of a file's text. Line ends are LF, CR LF or CR.
class Lines {
 public:
  // Both must outlive the object.
  Lines(std::string_view text, std::string_view file) : rest_(text), file_(file) {}

  // Moves to the next line; false at the end of the text.
  bool next();
  // Moves to the next line that is neither blank nor begins with a character of `comments`.
  bool nextContent(std::string_view comments = "#");
  // Like nextContent(), but fails at the end of the text; `expected` says what is missing.
  void needContent(std::string_view expected, std::string_view comments = "#");

  // The current line, trimmed.
  std::string_view text() const { return line_; }
  std::uint32_t number() const { return number_; }
  std::string_view file() const { return file_; }

  [[noreturn]] void fail(std::string_view field, const std::string& message) const;

  // Parses a finite number of at most kLargestNumber, with a decimal point or, if `decimal_comma`, a comma.
  double decimal(std::string_view text, std::string_view field, bool decimal_comma = false) const;
  // Parses a whole number from 0 to 2^31 - 1.
  std::uint32_t whole(std::string_view text, std::string_view field) const;

 private:
  std::string_view rest_;
  std::string_view file_;
  std::string_view line_;
  std::uint32_t number_ = 0;
  bool after_carriage_return_ = false;
};

// The words of the line, separated by blanks, tabs and the characters of `also`; text in double quotes is one word,
// returned without the quotes. Replaces the contents of `words` and returns their number.
std::size_t splitWords(std::string_view line, std::vector<std::string_view>& words, std::string_view also = "");

// The words of a text whose line breaks have no meaning. Braces and parentheses are words of their own, and text in
// double quotes is one word.
class Words {
 public:
  Words(std::string_view text, std::string_view file) : text_(text), file_(file) {}

  // The next word, empty at the end of the text.
  std::string_view next();
  // The next word, without consuming it.
  std::string_view peek();
  // Consumes the next word, which must be this one.
  void expect(std::string_view word, std::string_view field);
  // Skips to the brace or parenthesis that closes the one just consumed.
  void skipGroup();
  double decimal(std::string_view field);

  bool wasQuoted() const { return quoted_; }
  std::uint32_t line() const { return line_; }
  std::string_view file() const { return file_; }
  [[noreturn]] void fail(std::string_view field, const std::string& message) const;

 private:
  std::string_view text_;
  std::string_view file_;
  std::size_t at_ = 0;
  std::uint32_t line_ = 1;
  bool quoted_ = false;
};

// Like Lines::decimal, for readers that keep track of the line themselves.
double decimalAt(std::string_view file, std::uint32_t line, std::string_view field, std::string_view text);

// The number with at most that many decimals and no trailing zeros: "12.5".
std::string printed(double value, int decimals);

}  // namespace vantorel::tracks
