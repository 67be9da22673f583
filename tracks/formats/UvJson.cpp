// .uv JSON, versions 2 to 4: {"points": [{"name": ..., "per_frame": [{"frame": 1, "pos": [u, v], "weight": 1}, ...]}]}.
// Other members are skipped.
#include <fmt/format.h>

#include <iterator>

#include "tracks/JsonScanner.h"
#include "tracks/formats/Common.h"
#include "tracks/formats/Formats.h"

namespace vantorel::tracks {

namespace {

constexpr int kWrittenVersion = 4;

bool sniff(std::string_view text) {
  const std::size_t points = text.find("\"points\"");
  return !text.empty() && text.front() == '{' && points != std::string_view::npos && points < text.find("\"keys\"");
}

class UvJsonReader {
 public:
  UvJsonReader(const TrackText& text, TrackDocument& document) : json_(text.text, text.file), document_(document) {}

  void read() {
    forEachMember("", [&](std::string_view name) {
      if (name != "points") {
        json_.skip();
        return;
      }
      forEachElement("points", [&] { readPoint(); });
    });
    json_.finish();
  }

 private:
  [[noreturn]] void failAt(const std::string& field, const char* message) {
    fail(json_.file(), json_.line(), field, message);
  }

  template <typename Take>
  void forEachMember(const std::string& field, const Take& take) {
    if (json_.peek() != '{') {
      failAt(field, "is not an object; expected one in braces");
    }
    json_.open('{');
    std::string_view name;
    while (json_.nextMember(name)) {
      take(name);
    }
  }

  template <typename Take>
  void forEachElement(const std::string& field, const Take& take) {
    if (json_.peek() != '[') {
      failAt(field, "is not a list; expected one in brackets");
    }
    json_.open('[');
    while (json_.nextElement()) {
      take();
    }
  }

  void readPoint() {
    PointTrack point;
    forEachMember("points", [&](std::string_view name) {
      if (name == "name" && json_.peek() == '"') {
        point.name = json_.string();
      } else if (name == "per_frame") {
        forEachElement("per_frame", [&] { readKey(point); });
      } else {
        json_.skip();
      }
    });
    document_.points.push_back(std::move(point));
  }

  void readKey(PointTrack& point) {
    PointKey key;
    bool has_frame = false;
    bool has_position = false;
    forEachMember("per_frame", [&](std::string_view name) {
      if (name == "frame") {
        key.frame = json_.number([] { return "frame"; });
        key.line = json_.line();
        has_frame = true;
      } else if (name == "pos") {
        readPosition(key.value);
        has_position = true;
      } else {
        json_.skip();
      }
    });
    if (!has_frame || !has_position) {
      failAt("per_frame", "has no frame or no pos; every key needs both");
    }
    point.keys.push_back(key);
  }

  void readPosition(Point& value) {
    std::size_t count = 0;
    forEachElement("pos", [&] {
      const double coordinate = json_.number([] { return "pos"; });
      value.x = count == 0 ? coordinate : value.x;
      value.y = count == 1 ? coordinate : value.y;
      ++count;
    });
    if (count != 2) {
      failAt("pos", "is not a position; expected [u, v]");
    }
  }

  JsonScanner json_;
  TrackDocument& document_;
};

void read(const TrackText& text, TrackDocument& document) {
  UvJsonReader(text, document).read();
}

void write(const CornerTrack& track, const CornerList& corners, std::string& text) {
  fmt::format_to(std::back_inserter(text), "{{\"version\": {}, \"points\": [", kWrittenVersion);
  for (const Corner corner : corners) {
    fmt::format_to(std::back_inserter(text), "{}\n  {{\"name\": \"{}\", \"per_frame\": [",
                   corner == corners.front() ? "" : ",", kCornerNames[corner]);
    const char* separator = "";
    forEachKey(track, corner, [&](const std::string& frame, const std::string& x, const std::string& y) {
      fmt::format_to(std::back_inserter(text), "{}\n    {{\"frame\": {}, \"pos\": [{}, {}], \"weight\": 1}}", separator,
                     frame, x, y);
      separator = ",";
    });
    text += "\n  ]}";
  }
  text += "\n]}\n";
}

}  // namespace

constexpr Format kUvJsonFormat{"uv-json", ".uv JSON (versions 2 to 4)",
                               ".uv",     {Origin::LowerLeft, Units::Fraction, Basis::Output, {}, 0.5, {}, {}},
                               false,     false,
                               sniff,     read,
                               write};

}  // namespace vantorel::tracks
