// MatchMover 2-D tracks: imageSequence "path" { w h f( "path" ) b( first last step ) } and
// pointTrack "name" rgb( r g b ) { frame x y p+( confidence ) ... }.
#include <fmt/format.h>

#include <iterator>

#include "tracks/formats/Common.h"
#include "tracks/formats/Formats.h"

namespace vantorel::tracks {

namespace {

bool sniff(std::string_view text) {
  const auto words = firstWords(text);
  return !words.empty() && (words[0] == "imageSequence" || words[0] == "pointTrack");
}

void readSequence(Words& words, TrackDocument& document) {
  words.next();
  words.expect("{", "imageSequence");
  const double width = words.decimal("imageSequence: width");
  const double height = words.decimal("imageSequence: height");
  if (!(width >= 1.0 && height >= 1.0)) {
    words.fail("imageSequence", "has no size; expected the pictures' width and height after the brace");
  }
  document.conventions.size = Size{static_cast<int>(width), static_cast<int>(height)};
  words.skipGroup();
}

// Skips what may follow a key: "p+( 0.9 )".
void skipRemark(Words& words) {
  const std::string_view word = words.peek();
  if (word.empty() || word == "}" || isNumber(word)) {
    return;
  }
  words.next();
  if (words.peek() == "(") {
    words.next();
    words.skipGroup();
  }
}

void readPoint(Words& words, TrackDocument& document) {
  PointTrack point{std::string(words.next()), {}, false};
  while (words.peek() != "{") {
    if (words.peek().empty()) {
      words.fail("pointTrack", "is truncated; expected the keys in braces");
    }
    words.next();
  }
  words.next();
  while (words.peek() != "}") {
    const std::uint32_t line = words.line();
    const double frame = words.decimal("frame");
    const double x = words.decimal("x");
    const double y = words.decimal("y");
    point.keys.push_back({frame, {x, y}, line, 0});
    skipRemark(words);
  }
  words.next();
  document.points.push_back(std::move(point));
}

void read(const TrackText& text, TrackDocument& document) {
  Words words(text.text, text.file);
  for (std::string_view word = words.next(); !word.empty(); word = words.next()) {
    if (word == "imageSequence") {
      readSequence(words, document);
    } else if (word == "pointTrack") {
      readPoint(words, document);
    } else if (word == "{") {
      words.skipGroup();
    }
  }
}

void write(const CornerTrack& track, const CornerList& corners, std::string& text) {
  if (const auto& size = track.conventions.size) {
    const auto first = static_cast<long long>(track.keys.front().frame);
    const auto last = static_cast<long long>(track.keys.back().frame);
    fmt::format_to(std::back_inserter(text),
                   "imageSequence \"sequence\"\n{{\n  {} {} f( \"sequence\" ) b( {} {} 1 )\n}}\n", size->width,
                   size->height, first, last);
  }
  for (const Corner corner : corners) {
    fmt::format_to(std::back_inserter(text), "pointTrack \"{}\" rgb( 255 255 0 )\n{{\n", kCornerNames[corner]);
    forEachKey(track, corner, [&](const std::string& frame, const std::string& x, const std::string& y) {
      fmt::format_to(std::back_inserter(text), "  {} {} {} p+( 1 )\n", frame, x, y);
    });
    text += "}\n";
  }
}

}  // namespace

constexpr Format kMatchMoverFormat{"matchmover", "MatchMover 2-D tracks",
                                   ".rz2",       {Origin::UpperLeft, Units::Pixels, Basis::Output, {}, 0.5, {}, {}},
                                   false,        false,
                                   sniff,        read,
                                   write};

}  // namespace vantorel::tracks
