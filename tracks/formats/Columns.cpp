// Plain columns: rows of frame, x and y with any separator. One file per corner, or all corners in one file, each
// introduced by a comment with its name or by a blank line.
#include <fmt/format.h>

#include <iterator>

#include "tracks/CornerNames.h"
#include "tracks/formats/Common.h"
#include "tracks/formats/Formats.h"

namespace vantorel::tracks {

namespace {

constexpr std::string_view kComments = "#;/";
constexpr std::string_view kSeparators = ",;:";

bool areNumbers(const std::vector<std::string_view>& words) {
  return !words.empty() && isNumber(words[0]) && (words.size() < 2 || isNumber(words[1]));
}

// A first line without numbers is a header: "frame x y".
bool isHeader(const std::vector<std::string_view>& words) {
  return words.size() == 3 && isFrameColumn(words[0]);
}

bool sniff(std::string_view text) {
  const auto words = firstWords(text, kComments, kSeparators);
  return words.size() == 3 && (areNumbers(words) || isHeader(words));
}

void read(const TrackText& text, TrackDocument& document) {
  Lines lines(text.text, text.file);
  std::vector<std::string_view> words;
  std::string_view name;
  bool begins = true;
  while (lines.next()) {
    const std::string_view line = lines.text();
    if (line.empty() || kComments.find(line.front()) != std::string_view::npos) {
      const bool is_name = !line.empty() && cornerOfName(line).has_value();
      name = is_name ? trimmed(line.substr(1)) : name;
      begins = begins || is_name || line.empty();
      continue;
    }
    splitWords(line, words, kSeparators);
    if (document.points.empty() && isHeader(words)) {
      continue;
    }
    const PointKey key = rowKey(lines, words, 0);
    // A blank line within one point's rows does not start a new point.
    const bool goes_on =
        begins && !document.points.empty() && name.empty() && key.frame > document.points.back().keys.back().frame;
    if (begins && !goes_on) {
      document.points.push_back({std::string(name), {}, false});
      name = {};
    }
    begins = false;
    document.points.back().keys.push_back(key);
  }
}

void write(const CornerTrack& track, const CornerList& corners, std::string& text) {
  for (const Corner corner : corners) {
    fmt::format_to(std::back_inserter(text), "{}# {}\n", text.empty() ? "" : "\n", kCornerNames[corner]);
    forEachKey(track, corner, [&](const std::string& frame, const std::string& x, const std::string& y) {
      fmt::format_to(std::back_inserter(text), "{} {} {}\n", frame, x, y);
    });
  }
}

}  // namespace

constexpr Format kColumnsFormat{"columns", "plain columns of frame, x and y", ".txt", {}, false, true, sniff, read,
                                write};

}  // namespace vantorel::tracks
