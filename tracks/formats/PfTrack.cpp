// PFTrack 2-D tracks: a name in quotes, the clip's number or "camera", the number of keys, and rows of frame, x, y,
// residual and sometimes depth. The first pixel's centre is at 0.
#include <fmt/format.h>

#include <iterator>

#include "tracks/formats/Common.h"
#include "tracks/formats/Formats.h"

namespace vantorel::tracks {

namespace {

bool isQuoted(std::string_view line) {
  return line.size() >= 2 && line.front() == '"' && line.back() == '"';
}

bool sniff(std::string_view text) {
  const auto lines = firstLines(text, 3);
  return lines.size() == 3 && isQuoted(lines[0]) && (isNumber(lines[1]) || isQuoted(lines[1])) && isNumber(lines[2]);
}

void read(const TrackText& text, TrackDocument& document) {
  Lines lines(text.text, text.file);
  while (lines.nextContent()) {
    if (!isQuoted(lines.text())) {
      lines.fail("", fmt::format("reads {} where a point's name in quotes is expected", quoted(lines.text())));
    }
    document.points.push_back({std::string(lines.text().substr(1, lines.text().size() - 2)), {}, false});
    lines.needContent("the clip's number or a camera's name in quotes");
    if (!isQuoted(lines.text())) {
      lines.whole(lines.text(), "clip");
    }
    lines.needContent("the number of keys");
    readCountedRows(lines, lines.whole(lines.text(), "keys"), 3, document.points.back());
  }
}

void write(const CornerTrack& track, const CornerList& corners, std::string& text) {
  text += "# name, clip, number of keys, then: frame x y residual\n";
  for (const Corner corner : corners) {
    fmt::format_to(std::back_inserter(text), "\n\"{}\"\n1\n{}\n", kCornerNames[corner], track.keys.size());
    forEachKey(track, corner, [&](const std::string& frame, const std::string& x, const std::string& y) {
      fmt::format_to(std::back_inserter(text), "{} {} {} 0\n", frame, x, y);
    });
  }
}

}  // namespace

constexpr Format kPfTrackFormat{"pftrack", "PFTrack 2-D tracks",
                                ".2dt",    {Origin::LowerLeft, Units::Pixels, Basis::Output, {}, 0.0, {}, {}},
                                false,     false,
                                sniff,     read,
                                write};

}  // namespace vantorel::tracks
