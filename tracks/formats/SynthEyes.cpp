// SynthEyes 2-D paths: rows of name, frame, u, v and status, with u and v from -1 at the first pixel's centre to 1 at
// the last one's.
#include <fmt/format.h>

#include <iterator>

#include "tracks/formats/Common.h"
#include "tracks/formats/Formats.h"

namespace vantorel::tracks {

namespace {

constexpr std::uint32_t kTracked = 7;
constexpr std::uint32_t kTrackedAgain = 15;

bool sniff(std::string_view text) {
  const auto words = firstWords(text, "#", ",");
  return words.size() == 5 && isNumber(words[1]) && isNumber(words[2]) && isNumber(words[3]) && isNumber(words[4]) &&
         text.find(',') == std::string_view::npos;
}

void read(const TrackText& text, TrackDocument& document) {
  Lines lines(text.text, text.file);
  PointsByName points(document.points);
  std::vector<std::string_view> words;
  std::size_t untracked = 0;
  while (lines.nextContent()) {
    if (splitWords(lines.text(), words) != 5) {
      lines.fail("", fmt::format("has {}; expected 5: name, frame, u, v, status", counted(words.size(), "field")));
    }
    PointTrack& point = points.at(words[0]);
    const PointKey key = rowKey(lines, words, 1);
    const std::uint32_t status = lines.whole(words[4], "status");
    if (status == kTracked || status == kTrackedAgain) {
      point.keys.push_back(key);
    } else {
      ++untracked;
    }
  }
  if (untracked > 0) {
    document.notes.push_back(fmt::format("{} rows have a status other than 7 or 15 and were skipped", untracked));
  }
}

void write(const CornerTrack& track, const CornerList& corners, std::string& text) {
  for (const Corner corner : corners) {
    forEachKey(track, corner, [&](const std::string& frame, const std::string& x, const std::string& y) {
      fmt::format_to(std::back_inserter(text), "{} {} {} {} {}\n", kCornerNames[corner], frame, x, y, kTracked);
    });
  }
}

}  // namespace

constexpr Format kSynthEyesFormat{"syntheyes", "SynthEyes 2-D paths",
                                  ".txt",      {Origin::UpperLeft, Units::CentreSpan, Basis::Output, {}, 0.5, {}, {}},
                                  false,       false,
                                  sniff,       read,
                                  write};

}  // namespace vantorel::tracks
