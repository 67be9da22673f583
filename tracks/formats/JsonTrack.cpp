// The command's own JSON: {"units": ..., "interpolation": ..., "from": ..., "keys": [{"frame": 1, "ul": [x, y], ...},
// ...]}.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "tracks/JsonScanner.h"
#include "tracks/formats/Common.h"
#include "tracks/formats/Formats.h"

namespace vantorel::tracks {

namespace {

bool sniff(std::string_view text) {
  return !text.empty() && (text.front() == '{' || text.front() == '[');
}

// Remembers which members have been read; a duplicate is an error.
class SeenMembers {
 public:
  void take(const JsonScanner& json, std::size_t member, const std::string& field) {
    if ((seen_ >> member & 1) != 0) {
      fail(json.file(), json.line(), field, "appears twice; keep one of them");
    }
    seen_ |= 1u << member;
  }
  bool has(std::size_t member) const { return (seen_ >> member & 1) != 0; }

 private:
  unsigned seen_ = 0;
};

template <std::size_t N>
std::size_t indexOf(const std::array<std::string_view, N>& names, std::string_view name) {
  return static_cast<std::size_t>(std::find(names.begin(), names.end(), name) - names.begin());
}

// Members with these prefixes belong to other programs and are skipped.
bool isExtension(std::string_view name) {
  return name.starts_with('_') || name.starts_with('$') || name.starts_with("x-");
}

template <typename T, std::size_t N>
using WordTable = std::array<std::pair<std::string_view, T>, N>;

constexpr WordTable<Units, 2> kUnits{{{"px", Units::Pixels}, {"percent", Units::Percent}}};
constexpr WordTable<host::Interpolation, 3> kInterpolations{{{"linear", host::Interpolation::Linear},
                                                             {"hold", host::Interpolation::Hold},
                                                             {"smooth", host::Interpolation::Smooth}}};

constexpr std::array<std::string_view, 5> kTopMembers{"keys", "units", "interpolation", "from", "$schema"};
constexpr std::array<std::string_view, 5> kKeyMembers{"ul", "ur", "ll", "lr", "frame"};
constexpr std::size_t kFrameMember = kCornerCount;

class JsonTrackReader {
 public:
  JsonTrackReader(const TrackText& text, TrackDocument& document) : json_(text.text, text.file), document_(document) {}

  void read() {
    if (json_.peek() != '{') {
      json_.peek() == '[' ? failAt("", "is not an object; write {\"keys\": [...]}") : json_.failSyntax();
    }
    json_.open('{');
    addCorners(document_.points);
    SeenMembers seen;
    std::string_view name;
    while (json_.nextMember(name)) {
      const std::size_t member = indexOf(kTopMembers, name);
      if (member == kTopMembers.size()) {
        passOver(
            name, [&] { return std::string(name); },
            "is unknown; expected keys, units, interpolation, from or $schema");
        continue;
      }
      seen.take(json_, member, std::string(name));
      readMember(member);
    }
    json_.finish();
    if (!seen.has(0)) {
      fail(json_.file(), 0, "", "has no \"keys\"; list the keyframes in it");
    }
  }

 private:
  static void addCorners(std::vector<PointTrack>& points) {
    for (const std::string_view name : kCornerNames) {
      points.push_back({std::string(name), {}, false});
    }
  }

  [[noreturn]] void failAt(const std::string& field, const std::string& message) {
    fail(json_.file(), json_.line(), field, message);
  }

  // Skips an extension's value; fails for any other unknown member, which may be a misspelling.
  template <typename Place>
  void passOver(std::string_view name, const Place& place, const char* fault) {
    if (!isExtension(name)) {
      failAt(place(), fault);
    }
    json_.skip();
  }

  void readMember(std::size_t member) {
    switch (member) {
      case 0:
        readKeys("keys", document_.points);
        break;
      case 1:
        document_.conventions.units = choice("units", kUnits);
        break;
      case 2:
        document_.interpolation = choice("interpolation", kInterpolations);
        break;
      case 3:
        readSource();
        break;
      default:
        json_.skip();
    }
  }

  // Reads a value that must be one of the words.
  template <typename T, std::size_t N>
  T choice(const char* field, const WordTable<T, N>& words) {
    const bool is_text = json_.peek() == '"';
    const std::uint32_t line = json_.line();
    const std::string_view value = is_text ? json_.string() : std::string_view();
    std::string known;
    for (const auto& [word, meaning] : words) {
      if (word == value) {
        return meaning;
      }
      known += fmt::format("{}\"{}\"", known.empty() ? "" : ", ", word);
    }
    fail(json_.file(), line, field, fmt::format("is not one of {}; write one of them", known));
  }

  void readKeys(const char* list, std::vector<PointTrack>& points) {
    if (json_.peek() != '[') {
      failAt(list, "is not a list of keyframes; give at least one");
    }
    const std::uint32_t line = json_.line();
    json_.open('[');
    list_ = list;
    is_in_list_ = true;
    for (index_ = 0; json_.nextElement(); ++index_) {
      readKey(points);
    }
    if (index_ == 0) {
      fail(json_.file(), line, list, "is an empty list; give at least one keyframe");
    }
  }

  // One {"ul": ...} for all frames, or a list of keyframes.
  void readSource() {
    addCorners(document_.source_points);
    if (json_.peek() == '[') {
      readKeys("from", document_.source_points);
      return;
    }
    list_ = "from";
    is_in_list_ = false;
    readKey(document_.source_points);
  }

  std::string keyPlace() const { return is_in_list_ ? fmt::format("{}[{}]", list_, index_) : std::string(list_); }
  std::string memberPlace(std::size_t member) const { return fmt::format("{}.{}", keyPlace(), kKeyMembers[member]); }
  // The corners, and in a list also the frame.
  std::size_t memberCount() const { return is_in_list_ ? kKeyMembers.size() : kFrameMember; }

  void readKey(std::vector<PointTrack>& points) {
    if (json_.peek() != '{') {
      failAt(keyPlace(), is_in_list_ ? "is not a keyframe; write {\"frame\": 1, \"ul\": [x, y], ...}"
                                     : "is not a quadrilateral; write {\"ul\": [x, y], ...}, or a list of keyframes");
    }
    const std::uint32_t line = json_.line();
    json_.open('{');
    SeenMembers seen;
    std::array<Point, kCornerCount> corners{};
    double frame = 1.0;
    std::uint32_t frame_line = line;
    std::string_view name;
    while (json_.nextMember(name)) {
      const std::size_t member = indexOf(kKeyMembers, name);
      if (member >= memberCount()) {
        passOver(
            name, [&] { return fmt::format("{}.{}", keyPlace(), name); },
            is_in_list_ ? "is unknown; expected frame, ul, ur, ll or lr"
                        : "is unknown; expected ul, ur, ll or lr, and frame in a list");
        continue;
      }
      seen.take(json_, member, memberPlace(member));
      if (member == kFrameMember) {
        frame = json_.number([&] { return memberPlace(kFrameMember); });
        frame_line = json_.line();
      } else {
        corners[member] = readPosition(member);
      }
    }
    for (std::size_t member = 0; member < memberCount(); ++member) {
      if (!seen.has(member)) {
        fail(json_.file(), line, keyPlace(),
             fmt::format("has no \"{}\"; {} ul, ur, ll and lr", kKeyMembers[member],
                         is_in_list_ ? "every keyframe needs frame," : "give"));
      }
    }
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      points[c].keys.push_back({frame, corners[c], frame_line, 0});
    }
  }

  Point readPosition(std::size_t member) {
    const auto is_no_position = [&] { failAt(memberPlace(member), "is not a position; write [x, y]"); };
    if (json_.peek() != '[') {
      is_no_position();
    }
    json_.open('[');
    std::array<double, 2> values{};
    for (std::size_t axis = 0; axis < 2; ++axis) {
      if (!json_.nextElement()) {
        is_no_position();
      }
      values[axis] = json_.number([&] { return fmt::format("{}[{}]", memberPlace(member), axis); });
    }
    if (json_.nextElement()) {
      is_no_position();
    }
    return {values[0], values[1]};
  }

  JsonScanner json_;
  TrackDocument& document_;
  // The key being read: its member, whether that is a list, and its index there.
  const char* list_ = "keys";
  bool is_in_list_ = true;
  std::size_t index_ = 0;
};

void read(const TrackText& text, TrackDocument& document) {
  JsonTrackReader(text, document).read();
}

void writePositions(const CornerKey& key, const CornerList& corners, const CoordinateText& coordinate,
                    std::string& text) {
  const char* separator = "";
  for (const Corner corner : corners) {
    fmt::format_to(std::back_inserter(text), "{}\"{}\": [{}, {}]", separator, kCornerNames[corner],
                   coordinate(key.points[corner].x), coordinate(key.points[corner].y));
    separator = ", ";
  }
}

void writeKeys(const std::vector<CornerKey>& keys, const CornerList& corners, const CoordinateText& coordinate,
               std::string& text) {
  const char* separator = "[\n  ";
  for (const CornerKey& key : keys) {
    fmt::format_to(std::back_inserter(text), "{}{{\"frame\": {}, ", separator, frameText(key.frame));
    writePositions(key, corners, coordinate, text);
    text += '}';
    separator = ",\n  ";
  }
  text += "\n]";
}

void writeSource(const std::vector<CornerKey>& keys, const CornerList& corners, const CoordinateText& coordinate,
                 std::string& text) {
  text += "\"from\": ";
  if (keys.size() > 1) {
    writeKeys(keys, corners, coordinate, text);
  } else {
    text += '{';
    writePositions(keys.front(), corners, coordinate, text);
    text += '}';
  }
  text += ", ";
}

void write(const CornerTrack& track, const CornerList& corners, std::string& text) {
  const CoordinateText coordinate(track);
  const auto* const interpolation = std::find_if(kInterpolations.begin(), kInterpolations.end(),
                                                 [&](const auto& word) { return word.second == track.interpolation; });
  fmt::format_to(std::back_inserter(text), "{{\"units\": \"px\", \"interpolation\": \"{}\", ", interpolation->first);
  if (!track.source_keys.empty()) {
    writeSource(track.source_keys, corners, coordinate, text);
  }
  text += "\"keys\": ";
  writeKeys(track.keys, corners, coordinate, text);
  text += "}\n";
}

}  // namespace

constexpr Format kJsonFormat{"json",  "the command's own JSON",
                             ".json", {Origin::UpperLeft, Units::Pixels, Basis::Layer, {}, 0.5, {}, {}},
                             true,    false,
                             sniff,   read,
                             write,   true,
                             true,    true};

}  // namespace vantorel::tracks
