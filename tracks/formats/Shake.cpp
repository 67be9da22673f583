// Shake text: "TrackName NAME", a header, rows of frame, x, y and correlation, and a blank line at the end.
#include <fmt/format.h>

#include <iterator>

#include "tracks/formats/Common.h"
#include "tracks/formats/Formats.h"

namespace vantorel::tracks {

namespace {

constexpr std::string_view kNameWord = "TrackName";

bool sniff(std::string_view text) {
  const auto words = firstWords(text);
  return words.size() >= 2 && words[0] == kNameWord;
}

void read(const TrackText& text, TrackDocument& document) {
  Lines lines(text.text, text.file);
  std::vector<std::string_view> words;
  while (lines.nextContent()) {
    splitWords(lines.text(), words);
    if (words.front() == kNameWord) {
      const std::string_view name = words.size() > 1 ? words[1] : std::string_view();
      document.points.push_back({std::string(name), {}, false});
    } else if (document.points.empty()) {
      lines.fail("", fmt::format("reads {} where 'TrackName' is expected", quoted(lines.text())));
    } else if (words.front() != "Frame") {
      document.points.back().keys.push_back(rowKey(lines, words, 0));
    }
  }
}

void write(const CornerTrack& track, const CornerList& corners, std::string& text) {
  for (const Corner corner : corners) {
    fmt::format_to(std::back_inserter(text), "TrackName {}\n   Frame             X             Y   Correlation\n",
                   kCornerNames[corner]);
    forEachKey(track, corner, [&](const std::string& frame, const std::string& x, const std::string& y) {
      const bool is_whole = frame.find('.') == std::string::npos;
      fmt::format_to(std::back_inserter(text), "   {} {:>13} {:>13}         1.000\n", frame + (is_whole ? ".00" : ""),
                     x, y);
    });
    text += '\n';
  }
}

}  // namespace

constexpr Format kShakeFormat{
    "shake", "Shake text", ".txt", {Origin::LowerLeft, Units::Pixels, Basis::Output, {}, 0.5, {}, {}}, false, false,
    sniff,   read,         write};

}  // namespace vantorel::tracks
