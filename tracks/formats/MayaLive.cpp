// Maya Live tracks: "# Size w h aspect", "# Name NAME" and rows of track, frame, x, y and error, with x from -aspect to
// aspect and y from -1 to 1, upwards.
#include <fmt/format.h>

#include <iterator>

#include "tracks/formats/Common.h"
#include "tracks/formats/Formats.h"

namespace vantorel::tracks {

namespace {

bool sniff(std::string_view text) {
  for (const std::string_view line : firstLines(text, 16, "")) {
    std::vector<std::string_view> words;
    if (splitWords(line, words) >= 3 && words[0] == "#" && (words[1] == "Size" || words[1] == "Name")) {
      return true;
    }
  }
  return false;
}

void readSize(const Lines& lines, const std::vector<std::string_view>& words, Conventions& conventions) {
  if (words.size() < 4) {
    lines.fail("Size", fmt::format("has {}; expected width, height and aspect", counted(words.size() - 2, "field")));
  }
  const std::uint32_t width = lines.whole(words[2], "width");
  const std::uint32_t height = lines.whole(words[3], "height");
  if (width == 0 || height == 0) {
    lines.fail("Size", "is empty; expected the pictures' width and height");
  }
  conventions.size = Size{static_cast<int>(width), static_cast<int>(height)};
  if (words.size() > 4) {
    const double aspect = lines.decimal(words[4], "aspect");
    if (!(aspect > 1e-3)) {
      lines.fail("aspect", fmt::format("{} is not an aspect; expected width / height", quoted(words[4])));
    }
    conventions.aspect = aspect;
  }
}

void read(const TrackText& text, TrackDocument& document) {
  Lines lines(text.text, text.file);
  std::vector<std::string_view> words;
  bool named = false;
  std::string_view index;
  while (lines.nextContent("")) {
    splitWords(lines.text(), words);
    if (words[0] == "#" && words.size() > 2 && words[1] == "Size") {
      readSize(lines, words, document.conventions);
    } else if (words[0] == "#" && words.size() > 2 && words[1] == "Name") {
      document.points.push_back({std::string(words[2]), {}, false});
      named = true;
    } else if (words[0].front() != '#') {
      if (!named && (document.points.empty() || words[0] != index)) {
        index = words[0];
        document.points.push_back({std::string(index), {}, false});
      }
      document.points.back().keys.push_back(rowKey(lines, words, 1));
    }
  }
}

void write(const CornerTrack& track, const CornerList& corners, std::string& text) {
  const auto& conventions = track.conventions;
  if (conventions.size) {
    fmt::format_to(std::back_inserter(text), "# Size {} {} {}\n", conventions.size->width, conventions.size->height,
                   printed(conventions.aspect.value_or(0.0), 15));
  }
  for (std::size_t c = 0; c < corners.size(); ++c) {
    fmt::format_to(std::back_inserter(text), "# Name {}\n", kCornerNames[corners[c]]);
    forEachKey(track, corners[c], [&](const std::string& frame, const std::string& x, const std::string& y) {
      fmt::format_to(std::back_inserter(text), "{} {} {} {} 0\n", c, frame, x, y);
    });
  }
}

}  // namespace

constexpr Format kMayaLiveFormat{"maya", "Maya Live tracks",
                                 ".txt", {Origin::LowerLeft, Units::HalfHeights, Basis::Output, {}, 0.5, {}, {}},
                                 false,  false,
                                 sniff,  read,
                                 write};

}  // namespace vantorel::tracks
