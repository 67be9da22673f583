// The text of a node with four animated points: to1 to to4 (lower left, lower right, upper right, upper left), from1 to
// from4, invert and name. A coordinate is a number, {number}, {expression} or {curve x1 v v ... x9 v ...}, where xN
// sets the frame and the values that follow are for consecutive frames.
#include <fmt/format.h>

#include <array>
#include <iterator>

#include "tracks/formats/Common.h"
#include "tracks/formats/Formats.h"

namespace vantorel::tracks {

namespace {

constexpr std::array<Corner, kCornerCount> kOrder{kLowerLeft, kLowerRight, kUpperRight, kUpperLeft};
constexpr const char* kBakeHint = "bake the curve to a value a frame";

// The number after "to" or "from", counted from 0; kCornerCount for any other word.
std::size_t pointOfWord(std::string_view word, std::string_view prefix) {
  if (word.size() == prefix.size() + 1 && word.substr(0, prefix.size()) == prefix && word.back() >= '1' &&
      word.back() <= '4') {
    return static_cast<std::size_t>(word.back() - '1');
  }
  return kCornerCount;
}

bool sniff(std::string_view text) {
  for (std::size_t at = text.find("to1"); at != std::string_view::npos; at = text.find("to1", at + 3)) {
    const std::string_view after = trimmed(text.substr(at + 3, 8));
    if (!after.empty() && after.front() == '{') {
      return true;
    }
  }
  return false;
}

class NodeReader {
 public:
  explicit NodeReader(const TrackText& text) : words_(text.text, text.file) {}

  void read(TrackDocument& document) {
    for (std::string_view word = words_.next(); !word.empty() || words_.wasQuoted(); word = words_.next()) {
      const std::size_t to = pointOfWord(word, "to");
      const std::size_t from = pointOfWord(word, "from");
      if (to < kCornerCount && words_.peek() == "{") {
        if (points_[to]) {
          document.notes.emplace_back("the file has several nodes with corners; the first is used");
          break;
        }
        points_[to] = readPoint(word);
      } else if (from < kCornerCount && words_.peek() == "{" && !from_[from]) {
        from_[from] = readSource(word);
      } else if (word == "invert") {
        const std::string_view value = words_.next();
        document.inverted = value == "true" || value == "1";
      }
    }
    for (std::size_t p = 0; p < kCornerCount; ++p) {
      if (!points_[p]) {
        words_.fail(fmt::format("to{}", p + 1), "is missing; expected the points to1, to2, to3 and to4");
      }
      points_[p]->name = kCornerNames[kOrder[p]];
      document.points.push_back(std::move(*points_[p]));
    }
    takeSource(document);
  }

 private:
  PointTrack readPoint(std::string_view field) {
    words_.expect("{", field);
    Channel x = readChannel(field);
    Channel y = readChannel(field);
    words_.expect("}", field);
    return joinChannels(std::string(field), std::move(x), std::move(y), words_.file());
  }

  Channel readChannel(std::string_view field) {
    Channel channel;
    channel.line = words_.line();
    if (words_.peek() != "{") {
      channel.keys.emplace_back(0.0, words_.decimal(field));
      channel.constant = true;
      return channel;
    }
    words_.next();
    if (words_.peek() == "curve") {
      words_.next();
      readCurve(field, channel);
      return channel;
    }
    if (!isNumber(words_.peek())) {
      words_.fail(field, fmt::format("reads the expression {}; {}", quoted(words_.peek()), kBakeHint));
    }
    channel.keys.emplace_back(0.0, words_.decimal(field));
    channel.constant = true;
    words_.expect("}", field);
    return channel;
  }

  void readCurve(std::string_view field, Channel& channel) {
    double frame = 0.0;
    bool has_frame = false;
    for (std::string_view word = words_.next(); word != "}"; word = words_.next()) {
      if (word.empty()) {
        words_.fail(field, "is truncated; the curve's closing brace is missing");
      }
      if (word.front() == 'x') {
        frame = decimalAt(words_.file(), words_.line(), field, word.substr(1));
        has_frame = true;
      } else if (isNumber(word) && has_frame) {
        channel.keys.emplace_back(frame, decimalAt(words_.file(), words_.line(), field, word));
        frame += 1.0;
      } else if (word != "i") {
        words_.fail(field, has_frame ? fmt::format("reads {} in a curve; {}", quoted(word), kBakeHint)
                                     : fmt::format("reads {} where the curve's first frame, as in x1, is expected",
                                                   quoted(word)));
      }
    }
  }

  std::array<SourceCoordinate, 2> readSource(std::string_view field) {
    words_.expect("{", field);
    const SourceCoordinate x = readSourceCoordinate(field, "width");
    const SourceCoordinate y = readSourceCoordinate(field, "height");
    words_.expect("}", field);
    return {x, y};
  }

  SourceCoordinate readSourceCoordinate(std::string_view field, std::string_view extent) {
    const bool braced = words_.peek() == "{";
    if (braced) {
      words_.next();
    }
    SourceCoordinate result;
    std::string_view word = words_.peek();
    if (const std::size_t dot = word.rfind('.'); dot != std::string_view::npos && word.substr(dot + 1) == extent) {
      word = extent;
    }
    if (word == extent) {
      words_.next();
      result = {1.0, true};
    } else if (isNumber(word)) {
      result = {words_.decimal(field), false};
    } else {
      words_.fail(field,
                  fmt::format("reads {}; expected a number that does not change, or {{{}}}", quoted(word), extent));
    }
    if (braced) {
      words_.expect("}", field);
    }
    return result;
  }

  void takeSource(TrackDocument& document) const {
    SourceCorners corners{};
    std::size_t given = 0;
    for (std::size_t p = 0; p < kCornerCount; ++p) {
      given += from_[p] ? 1u : 0u;
      corners[kOrder[p]] = from_[p].value_or(std::array<SourceCoordinate, 2>{});
    }
    if (given == kCornerCount) {
      document.from = corners;
    } else if (given > 0) {
      words_.fail("from1", "is incomplete; expected all of from1, from2, from3 and from4, or none");
    }
  }

  Words words_;
  std::array<std::optional<PointTrack>, kCornerCount> points_;
  std::array<std::optional<std::array<SourceCoordinate, 2>>, kCornerCount> from_;
};

void read(const TrackText& text, TrackDocument& document) {
  NodeReader(text).read(document);
}

// A curve's values, with xN only where frames are not consecutive.
void writeCurve(const CornerTrack& track, Corner corner, double Point::*axis, std::string& text) {
  const CoordinateText coordinate(track);
  text += "{curve";
  for (std::size_t k = 0; k < track.keys.size(); ++k) {
    const CornerKey& key = track.keys[k];
    if (k == 0 || key.frame != track.keys[k - 1].frame + 1.0) {
      text += " x" + frameText(key.frame);
    }
    text += ' ' + coordinate(key.points[corner].*axis);
  }
  text += '}';
}

void write(const CornerTrack& track, const CornerList& corners, std::string& text) {
  if (corners.size() != kCornerCount) {
    fail(track.source, 0, "", "has all four corners in this format; write it to one file");
  }
  const CoordinateText coordinate(track);
  text += "Corners {\n";
  for (std::size_t p = 0; p < kCornerCount; ++p) {
    const Corner corner = kOrder[p];
    const Point& point = track.keys.front().points[corner];
    fmt::format_to(std::back_inserter(text), " to{} {{", p + 1);
    if (track.keys.size() == 1) {
      text += coordinate(point.x) + ' ' + coordinate(point.y);
    } else {
      writeCurve(track, corner, &Point::x, text);
      text += ' ';
      writeCurve(track, corner, &Point::y, text);
    }
    text += "}\n";
  }
  text += " invert false\n from1 {0 0}\n from2 {{width} 0}\n from3 {{width} {height}}\n from4 {0 {height}}\n";
  text += " name Corners\n}\n";
}

}  // namespace

constexpr Format kNodeTextFormat{"nk",  "node text with four animated points",
                                 ".nk", {Origin::LowerLeft, Units::Pixels, Basis::Output, {}, 0.5, {}, {}},
                                 true,  false,
                                 sniff, read,
                                 write};

}  // namespace vantorel::tracks
