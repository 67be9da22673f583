// .uv text, version 1: the number of points; for each one its name, the number of keys, and rows of frame, u, v and
// weight.
#include <fmt/format.h>

#include <iterator>

#include "tracks/formats/Common.h"
#include "tracks/formats/Formats.h"

namespace vantorel::tracks {

namespace {

bool sniff(std::string_view text) {
  const auto lines = firstLines(text, 4);
  std::vector<std::string_view> words;
  return lines.size() == 4 && isNumber(lines[0]) && isNumber(lines[2]) && splitWords(lines[3], words) == 4;
}

void read(const TrackText& text, TrackDocument& document) {
  readCountedPoints(text, PointHeader::Name, 4, document);
}

void write(const CornerTrack& track, const CornerList& corners, std::string& text) {
  fmt::format_to(std::back_inserter(text), "{}\n", corners.size());
  for (const Corner corner : corners) {
    fmt::format_to(std::back_inserter(text), "{}\n{}\n", kCornerNames[corner], track.keys.size());
    forEachKey(track, corner, [&](const std::string& frame, const std::string& x, const std::string& y) {
      fmt::format_to(std::back_inserter(text), "{} {} {} 1\n", frame, x, y);
    });
  }
}

}  // namespace

constexpr Format kUvTextFormat{"uv",  ".uv text (version 1)",
                               ".uv", {Origin::LowerLeft, Units::Fraction, Basis::Output, {}, 0.5, {}, {}},
                               false, false,
                               sniff, read,
                               write};

}  // namespace vantorel::tracks
