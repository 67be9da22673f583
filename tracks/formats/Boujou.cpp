// Boujou text: a header "# track_id view x y" and rows of name, frame, x and y.
#include <fmt/format.h>

#include <iterator>

#include "tracks/formats/Common.h"
#include "tracks/formats/Formats.h"

namespace vantorel::tracks {

namespace {

constexpr std::string_view kHeader = "# track_id";

bool sniff(std::string_view text) {
  const auto all_lines = firstLines(text, 16, "");
  for (const std::string_view line : all_lines) {
    if (line.substr(0, kHeader.size()) == kHeader) {
      return true;
    }
  }
  const auto words = firstWords(text);
  return words.size() == 4 && !isNumber(words[0]) && isNumber(words[1]) && isNumber(words[2]) && isNumber(words[3]);
}

void read(const TrackText& text, TrackDocument& document) {
  Lines lines(text.text, text.file);
  PointsByName points(document.points);
  std::vector<std::string_view> words;
  while (lines.nextContent()) {
    if (splitWords(lines.text(), words) != 4) {
      lines.fail("", fmt::format("has {}; expected 4: name, frame, x, y", counted(words.size(), "field")));
    }
    points.at(words[0]).keys.push_back(rowKey(lines, words, 1));
  }
}

void write(const CornerTrack& track, const CornerList& corners, std::string& text) {
  text += "# track_id view x y\n";
  for (const Corner corner : corners) {
    forEachKey(track, corner, [&](const std::string& frame, const std::string& x, const std::string& y) {
      fmt::format_to(std::back_inserter(text), "{} {} {} {}\n", kCornerNames[corner], frame, x, y);
    });
  }
}

}  // namespace

constexpr Format kBoujouFormat{
    "boujou", "Boujou text", ".txt", {Origin::UpperLeft, Units::Pixels, Basis::Output, {}, 0.5, {}, 0}, false, false,
    sniff,    read,          write};

}  // namespace vantorel::tracks
