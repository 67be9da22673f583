// 3DE4 points: the number of points; for each one its name, a colour number, the number of keys, and rows of frame, x
// and y.
#include <fmt/format.h>

#include <iterator>

#include "tracks/formats/Common.h"
#include "tracks/formats/Formats.h"

namespace vantorel::tracks {

namespace {

bool sniff(std::string_view text) {
  const auto lines = firstLines(text, 5);
  std::vector<std::string_view> words;
  return lines.size() >= 4 && isNumber(lines[0]) && isNumber(lines[2]) && isNumber(lines[3]) &&
         (lines.size() == 4 || splitWords(lines[4], words) == 3);
}

void read(const TrackText& text, TrackDocument& document) {
  readCountedPoints(text, PointHeader::NameAndColour, 3, document);
}

void write(const CornerTrack& track, const CornerList& corners, std::string& text) {
  fmt::format_to(std::back_inserter(text), "{}\n", corners.size());
  for (const Corner corner : corners) {
    fmt::format_to(std::back_inserter(text), "{}\n0\n{}\n", kCornerNames[corner], track.keys.size());
    forEachKey(track, corner, [&](const std::string& frame, const std::string& x, const std::string& y) {
      fmt::format_to(std::back_inserter(text), "{} {} {}\n", frame, x, y);
    });
  }
}

}  // namespace

constexpr Format k3dePointsFormat{
    "3de", "3DE4 points", ".txt", {Origin::LowerLeft, Units::Pixels, Basis::Output, {}, 0.5, {}, {}}, false, false,
    sniff, read,          write};

}  // namespace vantorel::tracks
