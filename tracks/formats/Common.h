// What the formats' readers and writers share.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tracks/Format.h"
#include "tracks/Text.h"

namespace vantorel::tracks {

// The first lines that are neither blank nor begin with a character of `comments`: at most `count`, trimmed.
std::vector<std::string_view> firstLines(std::string_view text, std::size_t count, std::string_view comments = "#");

// The words of the first such line; empty if there is none.
std::vector<std::string_view> firstWords(std::string_view text, std::string_view comments = "#",
                                         std::string_view also = "");

// The points of a document by name, created on first use. References are valid until the next one is created.
class PointsByName {
 public:
  explicit PointsByName(std::vector<PointTrack>& points) : points_(points) {}
  PointTrack& at(std::string_view name);

 private:
  std::vector<PointTrack>& points_;
  std::unordered_map<std::string_view, std::size_t> index_;  // keys are views into the text being read
  std::string_view last_name_;
  std::size_t last_ = 0;
};

// Parses the row "frame x y ..." that starts at `words[at]`. Fails, naming the line, unless there are three words.
PointKey rowKey(const Lines& lines, const std::vector<std::string_view>& words, std::size_t at);

// Reads `count` rows "frame x y ..." of at least that many words each.
void readCountedRows(Lines& lines, std::uint32_t count, std::size_t least_words, PointTrack& point);

enum class PointHeader { Name, NameAndColour };

// Reads a document of counted points: the number of points, then for each one its header, the number of keys, and their
// rows of at least that many words.
void readCountedPoints(const TrackText& text, PointHeader header, std::size_t least_words, TrackDocument& document);

// How writers format frame numbers and coordinates.
std::string frameText(double frame);
class CoordinateText {
 public:
  explicit CoordinateText(const CornerTrack& track);
  std::string operator()(double value) const { return printed(value, decimals_); }

 private:
  int decimals_;
};

// Calls write(key, x, y) for the corner's keys, with the coordinates formatted.
template <typename Write>
void forEachKey(const CornerTrack& track, Corner corner, const Write& write) {
  const CoordinateText coordinate(track);
  for (const CornerKey& key : track.keys) {
    write(frameText(key.frame), coordinate(key.points[corner].x), coordinate(key.points[corner].y));
  }
}

}  // namespace vantorel::tracks
