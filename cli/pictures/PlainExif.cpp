#include "cli/pictures/PlainExif.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>
#include <vector>

namespace vantorel::cli {

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

constexpr std::uint16_t kExifDirectory = 0x8769;
constexpr std::uint16_t kColourSpace = 0xA001;
constexpr std::uint16_t kComponents = 0x9101;
constexpr std::uint32_t kHeaderSize = 8;
constexpr std::uint32_t kEntrySize = 12;

enum Type : std::uint16_t { kAscii = 2, kShort = 3, kLong = 4, kUndefined = 7 };

// Texts, by their tags, in the order that TIFF wants.
constexpr std::array<std::pair<std::uint16_t, const char*>, 7> kTexts{{
    {0x010E, "ImageDescription"},
    {0x010F, "Make"},
    {0x0110, "Model"},
    {0x0131, "Software"},
    {0x0132, "DateTime"},
    {0x013B, "Artist"},
    {0x8298, "Copyright"},
}};

// Texts of four letters in the directory of EXIF's own tags.
constexpr std::array<std::pair<std::uint16_t, const char*>, 2> kVersions{{
    {0x9000, "Exif:ExifVersion"},
    {0xA000, "Exif:FlashPixVersion"},
}};

template <typename Names>
const char* nameOf(const Names& names, std::uint16_t tag) {
  const auto found = std::ranges::find(names, tag, [](const auto& name) { return name.first; });
  return found == names.end() ? nullptr : found->second;
}

// Numbers of a block, in its own order of bytes; those beyond its end are 0.
class Block {
 public:
  explicit Block(std::string_view bytes) : bytes_(bytes), is_big_endian_(bytes.starts_with("MM")) {}

  std::uint32_t number(std::size_t at, int size) const {
    std::uint32_t value = 0;
    for (int i = 0; i < size; ++i) {
      const auto place = at + static_cast<std::size_t>(is_big_endian_ ? i : size - 1 - i);
      value = value << 8 | (place < bytes_.size() ? static_cast<unsigned char>(bytes_[place]) : 0u);
    }
    return value;
  }
  std::uint16_t word(std::size_t at) const { return static_cast<std::uint16_t>(number(at, 2)); }
  std::uint32_t longWord(std::size_t at) const { return number(at, 4); }

  // The value of the entry there, of single bytes; nothing where it lies beyond the end.
  std::optional<std::string_view> bytesOf(std::size_t entry) const {
    const std::size_t size = longWord(entry + 4);
    const std::size_t at = size <= 4 ? entry + 8 : longWord(entry + 8);
    return at <= bytes_.size() && size <= bytes_.size() - at ? std::optional(bytes_.substr(at, size)) : std::nullopt;
  }
  bool holds(std::size_t at, std::size_t size) const { return at <= bytes_.size() && size <= bytes_.size() - at; }

 private:
  std::string_view bytes_;
  bool is_big_endian_;
};

// Visits the entries of a directory while `visit` returns true. Returns whether it did for all of them and no directory
// follows.
template <typename Visit>
bool forEntries(const Block& block, std::size_t directory, const Visit& visit) {
  const std::size_t count = block.word(directory);
  const std::size_t size = 2 + count * kEntrySize + 4;
  if (!block.holds(directory, size) || block.longWord(directory + size - 4) != 0) {
    return false;
  }
  for (std::size_t i = 0; i < count; ++i) {
    if (!visit(directory + 2 + i * kEntrySize)) {
      return false;
    }
  }
  return true;
}

bool takeText(const Block& block, std::size_t entry, const char* name, std::uint16_t type, Metadata& metadata) {
  const auto bytes = block.bytesOf(entry);
  if (name == nullptr || !bytes || block.word(entry + 2) != type) {
    return false;
  }
  const std::string text(bytes->substr(0, bytes->find('\0')));
  if (!text.empty()) {
    metadata.set(textAttribute(name, text));
  }
  return true;
}

bool takeExifEntry(const Block& block, std::size_t entry, Metadata& metadata) {
  const std::uint16_t tag = block.word(entry);
  if (tag == kComponents) {
    return true;
  }
  if (tag == kColourSpace) {
    metadata.set(numberAttribute("Exif:ColorSpace", static_cast<int>(block.word(entry + 8))));
    return block.word(entry + 2) == kShort;
  }
  return takeText(block, entry, nameOf(kVersions, tag), kUndefined, metadata);
}

// A block as it grows: numbers in little-endian order.
void append(std::string& bytes, std::uint32_t value, int size) {
  for (int i = 0; i < size; ++i) {
    bytes += static_cast<char>(value >> (8 * i) & 0xFF);
  }
}

struct Entry {
  std::uint16_t tag;
  std::uint16_t type;
  std::string value;  // its bytes
};

// A directory at that offset of the block, followed by the values that do not fit into their entries.
std::string directoryOf(const std::vector<Entry>& entries, std::uint32_t place) {
  std::string directory;
  std::string values;
  const auto end = static_cast<std::uint32_t>(place + 2 + entries.size() * kEntrySize + 4);
  append(directory, static_cast<std::uint32_t>(entries.size()), 2);
  for (const Entry& entry : entries) {
    const std::uint32_t unit = entry.type == kShort ? 2 : entry.type == kLong ? 4 : 1;
    append(directory, entry.tag, 2);
    append(directory, entry.type, 2);
    append(directory, static_cast<std::uint32_t>(entry.value.size()) / unit, 4);
    if (entry.value.size() <= 4) {
      directory += entry.value + std::string(4 - entry.value.size(), '\0');
    } else {
      append(directory, end + static_cast<std::uint32_t>(values.size()), 4);
      values += entry.value;
      values.resize((values.size() + 1) / 2 * 2);
    }
  }
  append(directory, 0, 4);
  return directory + values;
}

// Whether an attribute of that name is stored elsewhere than in EXIF.
bool isElsewhere(const std::string& name) {
  constexpr std::array kNames{"ICCProfile"sv,           "XResolution"sv,      "YResolution"sv,
                              "ResolutionUnit"sv,       "PixelAspectRatio"sv, "Exif:ColorSpace"sv,
                              "Exif:FlashPixVersion"sv, "Exif:ExifVersion"sv};
  return name.rfind("oiio:", 0) == 0 || std::ranges::find(kNames, std::string_view(name)) != kNames.end();
}

}  // namespace

std::optional<Metadata> readPlainExif(std::string_view bytes) {
  if (!bytes.starts_with("II*\0"sv) && !bytes.starts_with("MM\0*"sv)) {
    return std::nullopt;
  }
  const Block block(bytes);
  Metadata metadata;
  const bool is_plain = forEntries(block, block.longWord(4), [&](std::size_t entry) {
    const std::uint16_t tag = block.word(entry);
    if (tag == kExifDirectory) {
      return forEntries(block, block.longWord(entry + 8),
                        [&](std::size_t inner) { return takeExifEntry(block, inner, metadata); });
    }
    return takeText(block, entry, nameOf(kTexts, tag), kAscii, metadata);
  });
  return is_plain ? std::optional(metadata) : std::nullopt;
}

std::optional<std::string> writePlainExif(const Metadata& metadata) {
  std::vector<Entry> entries;
  for (const auto& [tag, name] : kTexts) {
    if (const std::string text = metadata.text(name); !text.empty()) {
      entries.push_back({tag, kAscii, text + '\0'});
    }
  }
  const bool holds_more = std::ranges::any_of(metadata.attributes(), [](const Attribute& attribute) {
    const auto is_it = [&](const auto& text) { return attribute.name == text.second && attribute.isText(); };
    return std::ranges::none_of(kTexts, is_it) && !isElsewhere(attribute.name);
  });
  if (holds_more) {
    return std::nullopt;
  }
  std::string inner;
  if (metadata.text("oiio:ColorSpace") == "sRGB") {
    const std::vector<Entry> exif{
        {0x9000, kUndefined, "0230"},
        {kComponents, kUndefined, "\1\2\3\0"s},
        {0xA000, kUndefined, "0100"},
        {kColourSpace, kShort, "\1\0"s},
    };
    // After the outer directory, whose size does not depend on where this one is.
    entries.push_back({kExifDirectory, kLong, std::string(4, '\0')});
    std::ranges::sort(entries, {}, &Entry::tag);
    const auto place = static_cast<std::uint32_t>(kHeaderSize + directoryOf(entries, kHeaderSize).size());
    auto& pointer = std::ranges::find(entries, kExifDirectory, &Entry::tag)->value;
    pointer.clear();
    append(pointer, place, 4);
    inner = directoryOf(exif, place);
  }
  std::string block("II*\0"sv);
  append(block, kHeaderSize, 4);
  return block + directoryOf(entries, kHeaderSize) + inner;
}

}  // namespace vantorel::cli
