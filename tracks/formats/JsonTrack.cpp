// The command's own JSON: {"units": ..., "interpolation": ..., "keys": [{"frame": 1, "ul": [x, y], ...}, ...]}.
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

// Notes which members were read; a second of one name is a fault.
class SeenMembers {
 public:
  void take(const JsonScanner& json, std::size_t member, const std::string& field) {
    if ((seen_ >> member & 1) != 0) {
      fail(json.file(), json.line(), field, "is there twice; keep one of them");
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

// Members whose names begin so are other programs' own, and passed over.
bool isExtension(std::string_view name) {
  return name.starts_with('_') || name.starts_with('$') || name.starts_with("x-");
}

template <typename T, std::size_t N>
using WordTable = std::array<std::pair<std::string_view, T>, N>;

constexpr WordTable<Units, 2> kUnits{{{"px", Units::Pixels}, {"percent", Units::Percent}}};
constexpr WordTable<host::Interpolation, 3> kInterpolations{{{"linear", host::Interpolation::Linear},
                                                             {"hold", host::Interpolation::Hold},
                                                             {"smooth", host::Interpolation::Smooth}}};

constexpr std::array<std::string_view, 4> kTopMembers{"keys", "units", "interpolation", "$schema"};
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
    for (const std::string_view name : kCornerNames) {
      document_.points.push_back({std::string(name), {}, false});
    }
    SeenMembers seen;
    std::string_view name;
    while (json_.nextMember(name)) {
      const std::size_t member = indexOf(kTopMembers, name);
      if (member == kTopMembers.size()) {
        passOver(
            name, [&] { return std::string(name); }, "is unknown; known here are keys, units, interpolation, $schema");
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
  [[noreturn]] void failAt(const std::string& field, const std::string& message) {
    fail(json_.file(), json_.line(), field, message);
  }

  // Skips an extension's value; any other member may be a misspelt one.
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
        readKeys();
        break;
      case 1:
        document_.conventions.units = choice("units", kUnits);
        break;
      case 2:
        document_.interpolation = choice("interpolation", kInterpolations);
        break;
      default:
        json_.skip();
    }
  }

  // What the value, one of the words, stands for.
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
    fail(json_.file(), line, field, fmt::format("is none of {}; write one of them", known));
  }

  void readKeys() {
    if (json_.peek() != '[') {
      failAt("keys", "is no list of keyframes; give at least one");
    }
    const std::uint32_t line = json_.line();
    json_.open('[');
    for (index_ = 0; json_.nextElement(); ++index_) {
      readKey();
    }
    if (index_ == 0) {
      fail(json_.file(), line, "keys", "is no list of keyframes; give at least one");
    }
  }

  std::string keyPlace() const { return fmt::format("keys[{}]", index_); }
  std::string memberPlace(std::size_t member) const { return fmt::format("keys[{}].{}", index_, kKeyMembers[member]); }

  void readKey() {
    if (json_.peek() != '{') {
      failAt(keyPlace(), "is no keyframe; write {\"frame\": 1, \"ul\": [x, y], ...}");
    }
    const std::uint32_t line = json_.line();
    json_.open('{');
    SeenMembers seen;
    std::array<PointKey, kCornerCount> keys{};
    double frame = 0.0;
    std::string_view name;
    while (json_.nextMember(name)) {
      const std::size_t member = indexOf(kKeyMembers, name);
      if (member == kKeyMembers.size()) {
        passOver(
            name, [&] { return fmt::format("{}.{}", keyPlace(), name); },
            "is unknown; known here are frame, ul, ur, ll, lr");
        continue;
      }
      seen.take(json_, member, memberPlace(member));
      if (member == kFrameMember) {
        frame = json_.number([&] { return memberPlace(kFrameMember); });
        keys[0].line = json_.line();
      } else {
        keys[member].value = readPosition(member);
      }
    }
    for (std::size_t member = 0; member < kKeyMembers.size(); ++member) {
      if (!seen.has(member)) {
        fail(json_.file(), line, keyPlace(),
             fmt::format("has no \"{}\"; every keyframe needs frame, ul, ur, ll and lr", kKeyMembers[member]));
      }
    }
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      document_.points[c].keys.push_back({frame, keys[c].value, keys[0].line, 0});
    }
  }

  Point readPosition(std::size_t member) {
    const auto isNoPosition = [&] { failAt(memberPlace(member), "is no position; write [x, y]"); };
    if (json_.peek() != '[') {
      isNoPosition();
    }
    json_.open('[');
    std::array<double, 2> values{};
    for (std::size_t axis = 0; axis < 2; ++axis) {
      if (!json_.nextElement()) {
        isNoPosition();
      }
      values[axis] = json_.number([&] { return fmt::format("{}[{}]", memberPlace(member), axis); });
    }
    if (json_.nextElement()) {
      isNoPosition();
    }
    return {values[0], values[1]};
  }

  JsonScanner json_;
  TrackDocument& document_;
  std::size_t index_ = 0;  // of the key that is read
};

void read(const TrackText& text, TrackDocument& document) {
  JsonTrackReader(text, document).read();
}

void write(const CornerTrack& track, const CornerList& corners, std::string& text) {
  const CoordinateText coordinate(track);
  const auto* const interpolation = std::find_if(kInterpolations.begin(), kInterpolations.end(),
                                                 [&](const auto& word) { return word.second == track.interpolation; });
  fmt::format_to(std::back_inserter(text), "{{\"units\": \"px\", \"interpolation\": \"{}\", \"keys\": [",
                 interpolation->first);
  for (std::size_t k = 0; k < track.keys.size(); ++k) {
    const CornerKey& key = track.keys[k];
    fmt::format_to(std::back_inserter(text), "{}\n  {{\"frame\": {}", k == 0 ? "" : ",", frameText(key.frame));
    for (const Corner corner : corners) {
      fmt::format_to(std::back_inserter(text), ", \"{}\": [{}, {}]", kCornerNames[corner],
                     coordinate(key.points[corner].x), coordinate(key.points[corner].y));
    }
    text += '}';
  }
  text += "\n]}\n";
}

}  // namespace

constexpr Format kJsonFormat{"json",  "the command's own JSON",
                             ".json", {Origin::UpperLeft, Units::Pixels, Basis::Layer, {}, 0.5, {}, {}},
                             true,    false,
                             sniff,   read,
                             write,   true,
                             true};

}  // namespace vantorel::tracks
