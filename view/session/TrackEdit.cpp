#include "view/session/TrackEdit.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <vector>

#include "cli/base/CommandError.h"
#include "cli/base/NumberParsing.h"
#include "cli/base/Text.h"
#include "tracks/Text.h"
#include "tracks/TrackFile.h"
#include "tracks/formats/CsvTable.h"
#include "view/session/Messages.h"

namespace vantorel::view {

namespace {

using tracks::CornerKey;
using tracks::kCornerCount;
using tracks::kCornerNames;

constexpr int kFrameDecimals = 6;
constexpr int kPositionDecimals = 6;  // of pixels and of percent
// Positions that differ by less are equal: this is less than the resolution of 16.16 numbers.
constexpr double kSame = 1.0 / (1 << 20);

bool areSame(const host::Point& a, const host::Point& b) {
  return std::abs(a.x - b.x) < kSame && std::abs(a.y - b.y) < kSame;
}

std::string positionText(double value) {
  return tracks::printed(value, kPositionDecimals);
}

const tracks::Format* formatOf(std::string_view text, const std::string& name) {
  return tracks::detectFormat(tracks::withoutByteOrderMark(text), name);
}

// Edits the lines of a table.
class TableEditor {
 public:
  TableEditor(std::string_view text, const std::string& name, const tracks::CornerTrack& track, host::Size layer)
      : text_(text), layout_(tracks::csvLayout({text, name, {}})), layer_(layer) {
    for (const CornerKey& key : track.keys) {
      missing_.emplace(key.frame, &key);
    }
  }

  std::string edited() {
    std::string result;
    std::uint32_t number = 0;
    for (std::size_t begin = 0; begin < text_.size();) {
      const std::size_t end = std::min(text_.find('\n', begin), text_.size() - 1) + 1;
      takeLine(text_.substr(begin, end - begin), ++number, result);
      begin = end;
    }
    if (!result.empty() && result.back() != '\n') {
      result += '\n';
    }
    for (const auto& [frame, key] : missing_) {
      result += rowOf(*key);
    }
    return result;
  }

 private:
  void takeLine(std::string_view line, std::uint32_t number, std::string& result) {
    std::vector<std::string_view> cells;
    const std::string_view content = tracks::trimmed(line.substr(0, line.find_last_not_of("\r\n") + 1));
    if (!content.empty() && content.front() != '#' && number > layout_.header_line) {
      tracks::splitCells(content, layout_.separator, cells);
    }
    if (cells.size() != layout_.fields) {
      result += line;
      return;
    }
    const double frame = numberIn(cells[layout_.frame_field]);
    while (!missing_.empty() && missing_.begin()->first < frame) {
      result += rowOf(*missing_.begin()->second);
      missing_.erase(missing_.begin());
    }
    const auto found = missing_.find(frame);
    if (found == missing_.end()) {
      return;  // the key was deleted
    }
    result += holds(cells, *found->second) ? std::string(line) : replaced(line, cells, *found->second);
    missing_.erase(found);
  }

  double numberIn(std::string_view cell) const {
    std::string text(cell);
    if (layout_.decimalComma()) {
      std::ranges::replace(text, ',', '.');
    }
    const auto value = cli::parseNumber(text);
    return value ? *value : std::nan("");
  }

  double pixelsIn(std::string_view cell, int extent) const {
    const bool percent = !cell.empty() && cell.back() == '%';
    return percent ? numberIn(tracks::trimmed(cell.substr(0, cell.size() - 1))) * extent / 100.0 : numberIn(cell);
  }

  bool holds(const std::vector<std::string_view>& cells, const CornerKey& key) const {
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      const auto& fields = layout_.position_fields[c];
      if (!areSame({pixelsIn(cells[fields[0]], layer_.width), pixelsIn(cells[fields[1]], layer_.height)},
                   key.points[c])) {
        return false;
      }
    }
    return true;
  }

  // The line with the key's positions in their cells; `cells` are views into the line.
  std::string replaced(std::string_view line, const std::vector<std::string_view>& cells, const CornerKey& key) const {
    std::map<std::size_t, std::pair<std::size_t, std::string>>
        changes;  // by offset: the cell's old length and its new text
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      for (std::size_t axis = 0; axis < 2; ++axis) {
        const std::string_view cell = cells[layout_.position_fields[c][axis]];
        const double value = axis == 0 ? key.points[c].x : key.points[c].y;
        changes[static_cast<std::size_t>(cell.data() - line.data())] = {cell.size(), positionText(value)};
      }
    }
    std::string result;
    std::size_t at = 0;
    for (const auto& [place, change] : changes) {
      result.append(line.substr(at, place - at)).append(change.second);
      at = place + change.first;
    }
    return result.append(line.substr(at));
  }

  std::string rowOf(const CornerKey& key) const {
    std::vector<std::string> cells(layout_.fields, layout_.separator == ' ' ? "-" : "");
    cells[layout_.frame_field] = tracks::printed(key.frame, kFrameDecimals);
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      cells[layout_.position_fields[c][0]] = positionText(key.points[c].x);
      cells[layout_.position_fields[c][1]] = positionText(key.points[c].y);
    }
    return fmt::format("{}\n", fmt::join(cells, std::string(1, layout_.separator)));
  }

  std::string_view text_;
  tracks::CsvLayout layout_;
  host::Size layer_;
  std::map<double, const CornerKey*> missing_;  // keys that have not been found in a line yet, by frame
};

using Json = nlohmann::ordered_json;

// Edits the positions in the file's JSON objects, in the file's units.
class ObjectEditor {
 public:
  ObjectEditor(std::string_view text, const std::string& name, const tracks::CornerTrack& track, host::Size layer)
      : document_(Json::parse(text, nullptr, false)), track_(track), layer_(layer) {
    if (document_.is_discarded() || !document_.is_object()) {
      throw cli::fileFailure(name, "is not a JSON object any more; check what has changed it");
    }
    in_percent_ = document_.value("units", "px") == "percent";
  }

  std::string edited() {
    std::map<double, Json> before;
    for (const Json& key : document_.value("keys", Json::array())) {
      before[key.value("frame", 0.0)] = key;
    }
    Json keys = Json::array();
    for (const CornerKey& key : track_.keys) {
      const auto found = before.find(key.frame);
      keys.push_back(editedKey(found == before.end() ? Json{{"frame", number(key.frame)}} : found->second, key));
    }
    document_["keys"] = std::move(keys);
    const std::string_view interpolation = nameOf(track_.interpolation);
    if (document_.value("interpolation", "linear") != interpolation) {
      document_["interpolation"] = interpolation;
    }
    return written();
  }

 private:
  // Whole numbers without a decimal point.
  static Json number(double value) {
    return value == std::floor(value) && std::abs(value) < kWhole ? Json(static_cast<std::int64_t>(value))
                                                                  : Json(value);
  }

  Json inUnits(double pixels, int extent) const {
    return Json(number(in_percent_ ? std::stod(positionText(100.0 * pixels / extent)) : pixels));
  }

  double toPixels(const Json& position, std::size_t axis) const {
    const double value = position.at(axis).get<double>();
    return in_percent_ ? value * (axis == 0 ? layer_.width : layer_.height) / 100.0 : value;
  }

  Json editedKey(Json member, const CornerKey& key) const {
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      const std::string name(kCornerNames[c]);
      const host::Point& point = key.points[c];
      if (!member.contains(name) || !areSame({toPixels(member[name], 0), toPixels(member[name], 1)}, point)) {
        member[name] = Json::array({inUnits(point.x, layer_.width), inUnits(point.y, layer_.height)});
      }
    }
    return member;
  }

  // A key, on one line.
  std::string written() const {
    std::string text = "{";
    const char* separator = "";
    for (const auto& [name, value] : document_.items()) {
      text += fmt::format("{}{}: ", separator, Json(name).dump());
      separator = ", ";
      if (name != "keys") {
        text += value.dump();
        continue;
      }
      const char* key_separator = "\n  ";
      text += '[';
      for (const Json& key : value) {
        text += key_separator + key.dump();
        key_separator = ",\n  ";
      }
      text += "\n]";
    }
    return text + "}\n";
  }

  static constexpr double kWhole = 1e15;

  Json document_;
  const tracks::CornerTrack& track_;
  host::Size layer_;
  bool in_percent_ = false;
};

}  // namespace

bool isJsonTrack(std::string_view text, const std::string& name) {
  const tracks::Format* format = formatOf(text, name);
  return format != nullptr && format->name == "json";
}

bool isEditable(std::string_view text, const std::string& name) {
  const tracks::Format* format = formatOf(text, name);
  if (format == nullptr) {
    return false;
  }
  if (format->name == "json") {
    return true;
  }
  try {
    return format->name == "csv" && tracks::csvLayout({tracks::withoutByteOrderMark(text), name, {}}).has_own_names;
  } catch (const tracks::ReadFault&) {
    return false;
  }
}

std::string editedTrack(std::string_view text, const std::string& name, const tracks::CornerTrack& track,
                        host::Size layer) {
  const std::string_view content = tracks::withoutByteOrderMark(text);
  const tracks::Format* format = formatOf(content, name);
  if (format != nullptr && format->name == "json") {
    return ObjectEditor(content, name, track, layer).edited();
  }
  try {
    return TableEditor(content, name, track, layer).edited();
  } catch (const tracks::ReadFault& fault) {
    throw cli::fileFailure(fault.input, fault.message);
  }
}

}  // namespace vantorel::view
