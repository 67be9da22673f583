#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <optional>

#include "cli/base/CommandError.h"
#include "cli/base/NumberParsing.h"
#include "cli/base/Text.h"
#include "cli/corners/CornersTrack.h"

namespace vantorel::cli {

namespace {

constexpr std::size_t kColumnCount = 9;
constexpr std::array<std::string_view, kColumnCount> kColumns{"frame", "ulx", "uly", "urx", "ury",
                                                              "llx",   "lly", "lrx", "lry"};
constexpr const char* kColumnList = "frame,ulx,uly,urx,ury,llx,lly,lrx,lry";

// For each of kColumns, which of a line's fields holds it.
using ColumnOrder = std::array<std::size_t, kColumnCount>;
constexpr ColumnOrder kUsualOrder{0, 1, 2, 3, 4, 5, 6, 7, 8};

std::vector<std::string_view> splitFields(std::string_view line) {
  std::vector<std::string_view> fields;
  while (true) {
    const std::size_t comma = line.find(',');
    fields.push_back(trimmed(line.substr(0, comma)));
    if (comma == std::string_view::npos) {
      return fields;
    }
    line.remove_prefix(comma + 1);
  }
}

bool namesAColumn(std::string_view field) {
  return std::find(kColumns.begin(), kColumns.end(), field) != kColumns.end();
}

ColumnOrder readHeader(const std::vector<std::string_view>& fields, const std::string& place) {
  ColumnOrder order{};
  for (std::size_t c = 0; c < kColumnCount; ++c) {
    const auto found = std::find(fields.begin(), fields.end(), kColumns[c]);
    if (found == fields.end()) {
      throw fileFailure(place, fmt::format("the column '{}' is missing; the columns are {}", kColumns[c], kColumnList));
    }
    if (std::find(found + 1, fields.end(), kColumns[c]) != fields.end()) {
      throw fileFailure(place, fmt::format("the column '{}' stands twice; keep one", kColumns[c]));
    }
    order[c] = static_cast<std::size_t>(found - fields.begin());
  }
  return order;
}

class CsvReader {
 public:
  explicit CsvReader(const std::string& name) : name_(name) { track_.source = name; }

  void line(std::string_view text) {
    ++number_;
    text = trimmed(text.substr(0, text.find('#')));
    if (text.empty()) {
      return;
    }
    const std::vector<std::string_view> fields = splitFields(text);
    if (track_.keys.empty() && !header_ && std::any_of(fields.begin(), fields.end(), namesAColumn)) {
      order_ = readHeader(fields, place());
      header_ = fields.size();
      return;
    }
    const std::size_t expected = header_.value_or(kColumnCount);
    if (fields.size() != expected) {
      throw fileFailure(place(), fmt::format("has {} {} instead of {}; the columns are {}", fields.size(),
                                             fields.size() == 1 ? "field" : "fields", expected, kColumnList));
    }
    addKey(fields);
  }

  CornersTrack finish() && {
    if (track_.keys.empty()) {
      throw fileFailure(name_, fmt::format("holds no keys; write one per line: {}", kColumnList));
    }
    return std::move(track_);
  }

 private:
  std::string place() const { return fmt::format("{}: line {}", name_, number_); }

  void addKey(const std::vector<std::string_view>& fields) {
    const auto input = [&](std::size_t column) { return fmt::format("{}: {}", place(), kColumns[column]); };
    const auto field = [&](std::size_t column) { return fields[order_[column]]; };
    CornersKey key;
    const auto frame = parseNumber(field(0));
    if (!frame) {
      throw fileFailure(input(0), fmt::format("'{}' {}; give the frame's number", field(0), frame.error()));
    }
    key.frame = *frame;
    const auto [earlier, is_new] = line_of_frame_.try_emplace(key.frame, number_);
    if (!is_new) {
      throw fileFailure(input(0),
                        fmt::format("frame {} is on line {} already; keep one of them", field(0), earlier->second));
    }
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      key.corners[c].x = coordinate(input(1 + 2 * c), field(1 + 2 * c));
      key.corners[c].y = coordinate(input(2 + 2 * c), field(2 + 2 * c));
    }
    track_.keys.push_back(key);
  }

  static Coordinate coordinate(const std::string& input, std::string_view text) {
    const auto parsed = parseCoordinate(text);
    if (!parsed) {
      throw fileFailure(input, parsed.error());
    }
    return *parsed;
  }

  const std::string& name_;
  int number_ = 0;
  std::optional<std::size_t> header_;  // how many fields it has, once seen
  ColumnOrder order_ = kUsualOrder;
  std::map<double, int> line_of_frame_;
  CornersTrack track_;
};

}  // namespace

CornersTrack parseCornersCsv(const std::string& text, const std::string& name) {
  CsvReader reader(name);
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    reader.line(rest.substr(0, end));
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  return std::move(reader).finish();
}

}  // namespace vantorel::cli
