// MLT keyframes: "frame~=x y w h o;..." boxes. A time is a frame number or a clock value, hours:minutes:seconds.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>

#include "tracks/formats/Common.h"
#include "tracks/formats/Formats.h"

namespace vantorel::tracks {

namespace {

// How far, in pixels, the edges of a box may deviate from horizontal and vertical.
constexpr double kBoxTolerance = 1e-6;

bool isTime(std::string_view text) {
  return !text.empty() &&
         std::all_of(text.begin(), text.end(), [](char c) { return (c >= '0' && c <= '9') || c == ':' || c == '.'; });
}

std::string_view timeOf(std::string_view key) {
  std::string_view time = trimmed(key.substr(0, key.find('=')));
  if (!time.empty() && (time.back() == '~' || time.back() == '|')) {
    time.remove_suffix(1);
  }
  return trimmed(time);
}

bool sniff(std::string_view text) {
  const auto lines = firstLines(text, 1);
  return !lines.empty() && lines[0].find('=') != std::string_view::npos && isTime(timeOf(lines[0]));
}

// Hours, minutes and seconds, or minutes and seconds; with four parts the last one is frames.
double frameOfClock(const Lines& lines, std::string_view time, const TrackText& text) {
  if (!text.frames_per_second) {
    lines.fail("time", fmt::format("{} is a clock value; give the frames per second, or frame numbers", quoted(time)));
  }
  std::vector<std::string_view> parts;
  splitWords(time, parts, ":");
  if (parts.size() > 4) {
    lines.fail("time", fmt::format("{} is not a clock value; expected hours:minutes:seconds", quoted(time)));
  }
  double frames = 0.0;
  if (parts.size() == 4) {
    frames = lines.decimal(parts[3], "time");
    parts.pop_back();
  }
  double seconds = 0.0;
  for (const std::string_view part : parts) {
    seconds = seconds * 60.0 + lines.decimal(part, "time");
  }
  return seconds * *text.frames_per_second + frames;
}

void addBox(TrackDocument& document, const PointKey& upper_left, double width, double height) {
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    PointKey key = upper_left;
    key.value.x += c == kUpperRight || c == kLowerRight ? width : 0.0;
    key.value.y += c == kLowerLeft || c == kLowerRight ? height : 0.0;
    document.points[c].keys.push_back(key);
  }
}

void readKey(const Lines& lines, std::string_view key, const TrackText& text, TrackDocument& document) {
  const std::size_t equals = key.find('=');
  if (equals == std::string_view::npos) {
    lines.fail("", fmt::format("reads {}; expected frame~=x y w h", quoted(key)));
  }
  const std::string_view time = timeOf(key);
  std::vector<std::string_view> words;
  if (const std::size_t count = splitWords(key.substr(equals + 1), words); count != 4 && count != 5) {
    lines.fail("", fmt::format("has {} after '='; expected x, y, width, height and optionally opacity",
                               counted(count, "number")));
  }
  const double frame =
      time.find(':') == std::string_view::npos ? lines.decimal(time, "frame") : frameOfClock(lines, time, text);
  const PointKey upper_left{frame, {lines.decimal(words[0], "x"), lines.decimal(words[1], "y")}, lines.number(), 0};
  addBox(document, upper_left, lines.decimal(words[2], "width"), lines.decimal(words[3], "height"));
}

void read(const TrackText& text, TrackDocument& document) {
  Lines lines(text.text, text.file);
  for (const std::string_view name : kCornerNames) {
    document.points.push_back({std::string(name), {}, false});
  }
  std::size_t keys = 0;
  std::size_t held = 0;
  while (lines.nextContent()) {
    std::string_view rest = lines.text();
    while (!rest.empty()) {
      const std::size_t end = std::min(rest.find(';'), rest.size());
      const std::string_view key = trimmed(rest.substr(0, end));
      rest.remove_prefix(std::min(end + 1, rest.size()));
      if (!key.empty()) {
        readKey(lines, key, text, document);
        ++keys;
        held += key.find("|=") != std::string_view::npos ? 1u : 0u;
      }
    }
  }
  if (keys > 0 && held == keys) {
    document.interpolation = host::Interpolation::Hold;
  }
}

bool isBox(const Quadrilateral& q) {
  const auto equal = [](double a, double b) { return std::abs(a - b) <= kBoxTolerance; };
  return equal(q[kUpperLeft].y, q[kUpperRight].y) && equal(q[kLowerLeft].y, q[kLowerRight].y) &&
         equal(q[kUpperLeft].x, q[kLowerLeft].x) && equal(q[kUpperRight].x, q[kLowerRight].x);
}

void write(const CornerTrack& track, const CornerList&, std::string& text) {
  const CoordinateText coordinate(track);
  const char* equals = track.interpolation == host::Interpolation::Hold ? "|=" : "~=";
  for (const CornerKey& key : track.keys) {
    const Quadrilateral& q = key.points;
    if (!isBox(q)) {
      fail(track.source, 0, fmt::format("frame {}", frameText(key.frame)),
           "is not an upright box, which is all that this format can hold; write another format");
    }
    fmt::format_to(std::back_inserter(text), "{}{}{}{} {} {} {} 1", text.empty() ? "" : ";\n", frameText(key.frame),
                   equals, coordinate(q[kUpperLeft].x), coordinate(q[kUpperLeft].y),
                   coordinate(q[kLowerRight].x - q[kUpperLeft].x), coordinate(q[kLowerRight].y - q[kUpperLeft].y));
  }
  text += '\n';
}

}  // namespace

constexpr Format kMltFormat{"mlt",  "MLT keyframes: boxes",
                            ".txt", {Origin::UpperLeft, Units::Pixels, Basis::Output, {}, 0.5, {}, 0},
                            true,   false,
                            sniff,  read,
                            write,  true};

}  // namespace vantorel::tracks
