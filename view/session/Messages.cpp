#include "view/session/Messages.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "cli/base/CommandError.h"

namespace vantorel::view {

namespace {

using nlohmann::json;
using tracks::kCornerCount;

constexpr double kMaxFrame = 1e9;
constexpr std::size_t kKeyNumbers = 1 + 2 * kCornerCount;
constexpr int kMaxReduction = 1024;
constexpr std::array<std::pair<const char*, host::Interpolation>, 3> kInterpolations{
    {{"linear", host::Interpolation::Linear},
     {"hold", host::Interpolation::Hold},
     {"smooth", host::Interpolation::Smooth}}};

[[noreturn]] void failOf(const std::string& member, const std::string& wanted) {
  throw cli::badArgument(member, "is missing or invalid; give " + wanted);
}

const json& member(const json& body, const char* name, const char* wanted) {
  if (!body.is_object() || !body.contains(name)) {
    failOf(name, wanted);
  }
  return body.at(name);
}

double numberIn(const json& value, double least, double end, const std::string& name) {
  const double number = value.is_number() ? value.get<double>() : std::nan("");
  if (!(number >= least && number < end)) {
    failOf(name, fmt::format("a number from {} to below {}", least, end));
  }
  return number;
}

int wholeIn(const json& value, int least, int most, const std::string& name) {
  const double number = numberIn(value, least, most + 1.0, name);
  if (number != std::floor(number)) {
    failOf(name, "a whole number");
  }
  return static_cast<int>(number);
}

host::Point pointAt(const json& numbers, std::size_t at, const std::string& name) {
  return {numberIn(numbers[at], host::kMinCoordinate, host::kCoordinateEnd, name),
          numberIn(numbers[at + 1], host::kMinCoordinate, host::kCoordinateEnd, name)};
}

const json& listOf(const json& body, const char* name, std::size_t count) {
  const json& list = member(body, name, "a list of numbers");
  if (!list.is_array() || list.size() != count) {
    failOf(name, fmt::format("a list of {} numbers", count));
  }
  return list;
}

tracks::CornerKey keyOf(const json& numbers, std::size_t index) {
  const std::string name = fmt::format("track.keys[{}]", index);
  if (!numbers.is_array() || numbers.size() != kKeyNumbers) {
    failOf(name, fmt::format("a list of {} numbers", kKeyNumbers));
  }
  tracks::CornerKey key;
  key.frame = numberIn(numbers[0], -kMaxFrame, kMaxFrame, name);
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    key.points[c] = pointAt(numbers, 1 + 2 * c, name);
  }
  key.present = tracks::kAllCorners;
  return key;
}

host::Interpolation interpolationOf(const json& track) {
  const json& name = member(track, "interpolation", "linear, hold or smooth");
  for (const auto& [word, interpolation] : kInterpolations) {
    if (name == word) {
      return interpolation;
    }
  }
  failOf("track.interpolation", "linear, hold or smooth");
}

int floorToMultiple(int value, int n) {
  return value - ((value % n) + n) % n;
}

void append(std::string& text, std::int32_t value) {
  static_assert(std::endian::native == std::endian::little);
  text.append(reinterpret_cast<const char*>(&value), sizeof value);
}

}  // namespace

json parseBody(const std::string& text) {
  json body = json::parse(text, nullptr, false);
  if (!body.is_object()) {
    throw cli::badArgument("the body", "is not a JSON object; send one");
  }
  return body;
}

std::int32_t frameOf(const json& body) {
  constexpr int kMost = 1'000'000'000;
  return wholeIn(member(body, "frame", "a frame's number"), -kMost, kMost, "frame");
}

host::Corners cornersOf(const json& body) {
  const json& numbers = listOf(body, "corners", 2 * kCornerCount);
  return {pointAt(numbers, 0, "corners"), pointAt(numbers, 2, "corners"), pointAt(numbers, 4, "corners"),
          pointAt(numbers, 6, "corners")};
}

Region regionOf(const json& body, host::Size frame) {
  const int n = wholeIn(member(body, "n", "a whole number"), 1, kMaxReduction, "n");
  const json& sides = listOf(body, "region", 4);
  const auto side = [&](std::size_t i, int most) {
    return std::clamp(wholeIn(sides[i], -1 << 24, 1 << 24, "region"), 0, most);
  };
  const host::Rect rect{floorToMultiple(side(0, frame.width), n), floorToMultiple(side(1, frame.height), n),
                        std::min(frame.width, floorToMultiple(side(2, frame.width) + n - 1, n)),
                        std::min(frame.height, floorToMultiple(side(3, frame.height) + n - 1, n))};
  if (rect.empty()) {
    failOf("region", "a part of the frame");
  }
  return {rect, n};
}

tracks::CornerTrack trackOf(const json& body) {
  const json& message = member(body, "track", "a track");
  const json& keys = member(message, "keys", "a list of keys");
  if (!keys.is_array() || keys.empty()) {
    failOf("track.keys", "a list of at least one key");
  }
  tracks::CornerTrack track;
  track.source = "the track";
  track.interpolation = interpolationOf(message);
  track.conventions = {tracks::Origin::UpperLeft, tracks::Units::Pixels, tracks::Basis::Output, {}, 0.5, {}, {}};
  track.corners_named = true;
  for (std::size_t k = 0; k < keys.size(); ++k) {
    track.keys.push_back(keyOf(keys[k], k));
    if (k > 0 && track.keys[k].frame <= track.keys[k - 1].frame) {
      failOf(fmt::format("track.keys[{}]", k), "keys in ascending order");
    }
  }
  return track;
}

json toJson(const tracks::CornerTrack& track) {
  json keys = json::array();
  for (const tracks::CornerKey& key : track.keys) {
    json numbers{key.frame};
    for (const host::Point& point : key.points) {
      numbers.push_back(point.x);
      numbers.push_back(point.y);
    }
    keys.push_back(std::move(numbers));
  }
  return {{"interpolation", nameOf(track.interpolation)}, {"keys", std::move(keys)}};
}

std::string_view nameOf(host::Interpolation interpolation) {
  return std::ranges::find(kInterpolations, interpolation, [](const auto& named) { return named.second; })->first;
}

cli::CornersTrack asCorners(const tracks::CornerTrack& track) {
  cli::CornersTrack corners;
  corners.read = tracks::ReadTrack{track, tracks::formatNamed("json"), {}};
  corners.options.order = tracks::kAsWritten;
  return corners;
}

std::string pictureMessage(host::Point origin, const host::ConstImageView& pixels) {
  const std::size_t row_bytes = host::bytesPerPixel(pixels.depth) * static_cast<std::size_t>(pixels.size.width);
  std::string message;
  message.reserve(16 + row_bytes * static_cast<std::size_t>(pixels.size.height));
  append(message, static_cast<std::int32_t>(origin.x));
  append(message, static_cast<std::int32_t>(origin.y));
  append(message, pixels.size.width);
  append(message, pixels.size.height);
  for (int y = 0; y < pixels.size.height; ++y) {
    message.append(reinterpret_cast<const char*>(pixels.row(y)), row_bytes);
  }
  return message;
}

}  // namespace vantorel::view
