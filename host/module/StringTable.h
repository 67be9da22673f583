// The host's copy of a module's string table, with translations applied.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/Error.h"
#include "host/Module.h"

namespace vantorel::host {

class StringTable {
 public:
  // Copies the table whose header a module registers (an FX_StringHeader). InvalidArgument for a header
  // that is not one, for more than 4096 rows, and for a translation that changes a text's printf placeholders.
  static Result<StringTable> read(const void* header, const Translations& translations);

  // The text of a row; empty if the table has no such row. Lives as long as the table.
  const std::string& text(std::int32_t row) const;

 private:
  std::vector<std::string> texts_;
};

// The longest prefix of the UTF-8 `text` that fits into `capacity` bytes without splitting a character.
std::string_view cutToBytes(std::string_view text, std::size_t capacity);

// `text` without an incomplete UTF-8 character at its end.
std::string_view completeCharacters(std::string_view text);

// `text` with every token "#{cr}" replaced by a line break.
std::string withLineBreaks(std::string_view text);

}  // namespace vantorel::host
