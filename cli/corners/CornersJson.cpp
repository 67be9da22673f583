#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "cli/base/CommandError.h"
#include "cli/corners/CornersTrack.h"
#include "cli/corners/JsonLines.h"

namespace vantorel::cli {

namespace {

using nlohmann::json;

// Told of every event of a parser, finds names that stand twice in one object. The parser itself keeps the last.
class RepeatedNameFinder {
 public:
  bool operator()(int, json::parse_event_t event, json& parsed) {
    if (event == json::parse_event_t::object_start) {
      open_.emplace_back();
    } else if (event == json::parse_event_t::object_end) {
      open_.pop_back();
    } else if (event == json::parse_event_t::key) {
      found_ = !open_.back().insert(parsed.get<std::string>()).second || found_;
    }
    return true;
  }
  bool found() const { return found_; }

 private:
  std::vector<std::set<std::string>> open_;
  bool found_ = false;
};

class JsonReader {
 public:
  JsonReader(const std::string& text, const std::string& name) : text_(text), name_(name) {
    RepeatedNameFinder repeated;
    try {
      document_ = json::parse(text, std::ref(repeated));
    } catch (const json::parse_error& error) {
      throw fileFailure(fmt::format("{}: line {}", name_, lineOfByte(error.byte)),
                        "is not valid JSON; check quotes, commas and brackets there");
    } catch (const json::out_of_range&) {
      throw fileFailure(name_, "holds a number beyond the range of numbers; correct it");
    }
    if (repeated.found()) {
      throw fault(jsonLines(text).repeated.value_or(""), "stands twice in its object; keep one");
    }
  }

  CornersTrack read() {
    if (!document_.is_object()) {
      throw fault("", "is not an object; write {\"keys\": [...]}");
    }
    refuseOthers("", document_, {"keys", "units", "interpolation", "$schema"});
    CornersTrack track;
    track.source = name_;
    const bool percent = choice("units", "px", "percent");
    track.interpolation =
        choice("interpolation", "linear", "hold") ? host::Interpolation::Hold : host::Interpolation::Linear;
    if (!document_.contains("keys")) {
      throw fault("", "has no \"keys\"; list the keyframes in it");
    }
    const json& keys = document_["keys"];
    if (!keys.is_array() || keys.empty()) {
      throw fault("/keys", "is not a list of keyframes; give at least one");
    }
    std::map<double, std::size_t> seen;
    for (std::size_t k = 0; k < keys.size(); ++k) {
      track.keys.push_back(readKey(fmt::format("/keys/{}", k), keys[k], percent));
      const auto [earlier, is_new] = seen.try_emplace(track.keys.back().frame, k);
      if (!is_new) {
        throw fault(fmt::format("/keys/{}/frame", k),
                    fmt::format("is the same frame as keys[{}]; keep one of them", earlier->second));
      }
    }
    return track;
  }

 private:
  // Whether the optional field holds the second of its two words rather than the first.
  bool choice(const char* field, const char* usual, const char* other) {
    if (!document_.contains(field)) {
      return false;
    }
    const json& value = document_[field];
    if (value != usual && value != other) {
      throw fault(std::string("/") + field,
                  fmt::format("is neither \"{}\" nor \"{}\"; write one of them", usual, other));
    }
    return value == other;
  }

  CornersKey readKey(const std::string& path, const json& value, bool percent) {
    if (!value.is_object()) {
      throw fault(path, "is not a keyframe; write {\"frame\": 1, \"ul\": [x, y], ...}");
    }
    refuseOthers(path, value, {"frame", "ul", "ur", "ll", "lr"});
    CornersKey key;
    key.frame = number(path + "/frame", member(path, value, "frame"));
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      const std::string corner_path = fmt::format("{}/{}", path, kCornerNames[c]);
      const json& corner = member(path, value, kCornerNames[c]);
      if (!corner.is_array() || corner.size() != 2) {
        throw fault(corner_path, "is not a position; write [x, y]");
      }
      key.corners[c].x = coordinate(corner_path + "/0", corner[0], percent);
      key.corners[c].y = coordinate(corner_path + "/1", corner[1], percent);
    }
    return key;
  }

  const json& member(const std::string& path, const json& object, const char* name) {
    if (!object.contains(name)) {
      throw fault(path, fmt::format("has no \"{}\"; every keyframe needs frame, ul, ur, ll and lr", name));
    }
    return object[name];
  }

  void refuseOthers(const std::string& path, const json& object, const std::vector<std::string>& known) {
    for (const auto& item : object.items()) {
      if (std::find(known.begin(), known.end(), item.key()) == known.end()) {
        throw fault(path + '/' + item.key(), fmt::format("is unknown; known here are {}", fmt::join(known, ", ")));
      }
    }
  }

  double number(const std::string& path, const json& value) {
    if (!value.is_number()) {
      throw fault(path, "is not a number; write one without quotes");
    }
    return value.get<double>();
  }

  Coordinate coordinate(const std::string& path, const json& value, bool percent) {
    const auto checked = checkedCoordinate(number(path, value), percent);
    if (!checked) {
      throw fault(path, checked.error());
    }
    return *checked;
  }

  // An error about the value at that path: "corners.json: line 7: keys[3].ul[0]: ...".
  CommandError fault(const std::string& path, const std::string& message) const {
    const std::map<std::string, int> lines = jsonLines(text_).line_of;
    std::string input = name_;
    if (const auto line = lines.find(path); line != lines.end()) {
      input += fmt::format(": line {}", line->second);
    }
    if (!path.empty()) {
      input += ": " + readable(path);
    }
    return fileFailure(input, message);
  }

  static std::string readable(const std::string& path) {
    std::string text;
    std::size_t at = 0;
    while (at < path.size()) {
      const std::size_t end = std::min(path.find('/', at + 1), path.size());
      const std::string step = path.substr(at + 1, end - at - 1);
      const bool index = !step.empty() && step.find_first_not_of("0123456789") == std::string::npos;
      text += index ? "[" + step + "]" : (text.empty() ? step : "." + step);
      at = end;
    }
    return text;
  }

  std::ptrdiff_t lineOfByte(std::size_t byte) const {
    const auto end = text_.begin() + static_cast<std::ptrdiff_t>(std::min(byte == 0 ? 0 : byte - 1, text_.size()));
    return 1 + std::count(text_.begin(), end, '\n');
  }

  const std::string& text_;
  const std::string& name_;
  json document_;
};

}  // namespace

CornersTrack parseCornersJson(const std::string& text, const std::string& name) {
  return JsonReader(text, name).read();
}

}  // namespace vantorel::cli
