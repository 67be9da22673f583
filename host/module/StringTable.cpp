#include "host/module/StringTable.h"

#include <bit>
#include <cstring>
#include <utility>

#include "host/Error.h"
#include "host/module/Translations.h"
#include "support/PF_HostRecords.h"

namespace vantorel::host {

namespace {

constexpr std::string_view kTag = "FX";
constexpr std::uint64_t kMaxRows = 4096;
constexpr std::size_t kMaxRowBytes = 65536;
constexpr std::string_view kLineBreakToken = "#{cr}";

Result<std::string> translated(std::string_view row, const Translations& translations) {
  const std::size_t equals = row.find('=');
  if (equals == std::string_view::npos) {
    return std::string(row);
  }
  const std::string_view key = row.substr(0, equals);
  const std::string_view text = row.substr(equals + 1);
  const auto found = translations.find(key);
  if (found == translations.end()) {
    return std::string(text);
  }
  if (printfPlaceholders(found->second) != printfPlaceholders(text)) {
    return invalidArgument("translation of " + std::string(key),
                           "its placeholders differ from those of the text that it replaces, \"" + std::string(text) +
                               "\"; keep every % placeholder, in the same order");
  }
  return found->second;
}

}  // namespace

Result<StringTable> StringTable::read(const void* header, const Translations& translations) {
  const auto* const table = static_cast<const FX_StringHeader*>(header);
  if (table == nullptr || table->tag == nullptr || std::strncmp(table->tag, kTag.data(), kTag.size() + 1) != 0) {
    return invalidArgument("string table", "its header lacks the tag \"FX\"");
  }
  if (table->rows == nullptr || table->row_count > kMaxRows) {
    return invalidArgument("string table", "its header declares no rows, or more than 4096");
  }
  StringTable result;
  for (std::uint64_t i = 0; i < table->row_count && table->rows[i].text != nullptr; ++i) {
    const char* const row = table->rows[i].text;
    Result<std::string> text = translated({row, strnlen(row, kMaxRowBytes)}, translations);
    if (!text) {
      return tl::unexpected(std::move(text).error());
    }
    result.texts_.push_back(std::move(*text));
  }
  return result;
}

const std::string& StringTable::text(std::int32_t row) const {
  static const std::string kNone;
  return row >= 0 && static_cast<std::size_t>(row) < texts_.size() ? texts_[static_cast<std::size_t>(row)] : kNone;
}

std::string_view cutToBytes(std::string_view text, std::size_t capacity) {
  return text.size() <= capacity ? text : completeCharacters(text.substr(0, capacity));
}

std::string_view completeCharacters(std::string_view text) {
  // Finds the last character's first byte, the one not of the form 10xxxxxx. The number of its leading ones is the
  // character's length.
  std::size_t start = text.size();
  while (start > 0 && (static_cast<unsigned char>(text[start - 1]) & 0xC0) == 0x80) {
    --start;
  }
  if (start == 0) {
    return text;
  }
  const int length = std::countl_one(static_cast<unsigned char>(text[start - 1]));
  const std::size_t present = text.size() - start + 1;
  return length > 1 && present < static_cast<std::size_t>(length) ? text.substr(0, start - 1) : text;
}

std::string withLineBreaks(std::string_view text) {
  std::string result;
  for (std::size_t token = text.find(kLineBreakToken); token != std::string_view::npos;
       token = text.find(kLineBreakToken)) {
    result.append(text.substr(0, token)).push_back('\n');
    text.remove_prefix(token + kLineBreakToken.size());
  }
  return result.append(text);
}

}  // namespace vantorel::host
