#include "tracks/formats/Common.h"

#include <fmt/format.h>

#include <algorithm>

namespace vantorel::tracks {

namespace {

// Limits the memory reserved up front, so that a wrong count in a file costs no memory.
constexpr std::uint32_t kMaxReserved = 1u << 20;

}  // namespace

std::vector<std::string_view> firstLines(std::string_view text, std::size_t count, std::string_view comments) {
  std::vector<std::string_view> result;
  Lines lines(text, "");
  while (result.size() < count && lines.nextContent(comments)) {
    result.push_back(lines.text());
  }
  return result;
}

std::vector<std::string_view> firstWords(std::string_view text, std::string_view comments, std::string_view also) {
  std::vector<std::string_view> words;
  const std::vector<std::string_view> lines = firstLines(text, 1, comments);
  if (!lines.empty()) {
    splitWords(lines.front(), words, also);
  }
  return words;
}

PointTrack& PointsByName::at(std::string_view name) {
  if (index_.empty() || name != last_name_) {
    const auto [found, is_new] = index_.try_emplace(name, points_.size());
    if (is_new) {
      points_.push_back({std::string(name), {}, false});
    }
    last_name_ = found->first;
    last_ = found->second;
  }
  return points_[last_];
}

PointKey rowKey(const Lines& lines, const std::vector<std::string_view>& words, std::size_t at) {
  if (words.size() < at + 3) {
    lines.fail("", fmt::format("has too few fields ({}); expected a frame's number, x and y", words.size()));
  }
  return {lines.decimal(words[at], "frame"),
          {lines.decimal(words[at + 1], "x"), lines.decimal(words[at + 2], "y")},
          lines.number(),
          0};
}

void readCountedRows(Lines& lines, std::uint32_t count, std::size_t least_words, PointTrack& point) {
  std::vector<std::string_view> words;
  point.keys.reserve(std::min(count, kMaxReserved));
  for (std::uint32_t row = 0; row < count; ++row) {
    if (!lines.nextContent()) {
      lines.fail("", fmt::format("is truncated; expected {} rows of {}, found {}", count, quoted(point.name), row));
    }
    if (splitWords(lines.text(), words) < least_words) {
      lines.fail("",
                 fmt::format("has {}; expected {} or more: frame, x, y", counted(words.size(), "field"), least_words));
    }
    point.keys.push_back(rowKey(lines, words, 0));
  }
}

void readCountedPoints(const TrackText& text, PointHeader header, std::size_t least_words, TrackDocument& document) {
  Lines lines(text.text, text.file);
  lines.needContent("the number of points");
  const std::uint32_t count = lines.whole(lines.text(), "points");
  for (std::uint32_t p = 0; p < count; ++p) {
    lines.needContent(fmt::format("{} points, found {}", count, p));
    document.points.push_back({std::string(lines.text()), {}, false});
    if (header == PointHeader::NameAndColour) {
      lines.needContent("the point's colour");
      lines.whole(lines.text(), "colour");
    }
    lines.needContent("the number of keys");
    readCountedRows(lines, lines.whole(lines.text(), "keys"), least_words, document.points.back());
  }
}

std::string frameText(double frame) {
  return printed(frame, 6);
}

CoordinateText::CoordinateText(const CornerTrack& track)
    : decimals_(usefulDecimals(track.conventions.units.value_or(Units::Pixels))) {}

}  // namespace vantorel::tracks
