// Benchmark corners: x1 y1 ... x4 y4, a line a frame, without frame numbers.
#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "tracks/formats/Common.h"
#include "tracks/formats/Formats.h"

namespace vantorel::tracks {

namespace {

// Written clockwise from the upper left; files may have any order.
constexpr std::array<Corner, kCornerCount> kOrder{kUpperLeft, kUpperRight, kLowerRight, kLowerLeft};
constexpr std::size_t kNumbers = 2 * kCornerCount;
constexpr std::array<std::string_view, kNumbers> kFields{"x1", "y1", "x2", "y2", "x3", "y3", "x4", "y4"};

bool sniff(std::string_view text) {
  const auto words = firstWords(text, "#", ",;");
  return words.size() == kNumbers && std::all_of(words.begin(), words.end(), isNumber);
}

void read(const TrackText& text, TrackDocument& document) {
  Lines lines(text.text, text.file);
  std::vector<std::string_view> words;
  document.points.resize(kCornerCount);
  std::uint32_t frame = 0;
  while (lines.nextContent()) {
    if (splitWords(lines.text(), words, ",;") != kNumbers) {
      lines.fail("", fmt::format("has {}; expected 8: x1 y1 x2 y2 x3 y3 x4 y4", counted(words.size(), "field")));
    }
    ++frame;
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      const double x = lines.decimal(words[2 * c], kFields[2 * c]);
      const double y = lines.decimal(words[2 * c + 1], kFields[2 * c + 1]);
      document.points[kOrder[c]].keys.push_back({static_cast<double>(frame), {x, y}, lines.number(), 0});
    }
  }
  document.notes.emplace_back("the lines have no frame numbers and are counted as frames from 1");
}

void write(const CornerTrack& track, const CornerList&, std::string& text) {
  const CoordinateText coordinate(track);
  for (std::size_t k = 0; k < track.keys.size(); ++k) {
    if (track.keys[k].frame != track.keys.front().frame + static_cast<double>(k)) {
      fail(track.source, 0, fmt::format("frame {}", frameText(track.keys[k].frame)),
           "is not the next frame after the previous one, and this format has no frame numbers; write another format");
    }
  }
  for (const CornerKey& key : track.keys) {
    for (const Corner corner : kOrder) {
      fmt::format_to(std::back_inserter(text), "{}{} {}", corner == kOrder[0] ? "" : " ",
                     coordinate(key.points[corner].x), coordinate(key.points[corner].y));
    }
    text += '\n';
  }
}

}  // namespace

constexpr Format kBenchmarkFormat{"benchmark", "benchmark corners: eight numbers a line, a line a frame",
                                  ".txt",      {Origin::UpperLeft, Units::Pixels, Basis::Output, {}, 0.5, {}, {}},
                                  false,       false,
                                  sniff,       read,
                                  write};

}  // namespace vantorel::tracks
