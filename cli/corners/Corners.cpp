#include "cli/corners/Corners.h"

#include <fmt/format.h>

#include "cli/base/NumberParsing.h"
#include "cli/base/Text.h"

namespace vantorel::cli {

namespace {

Parsed<double> checkedPixels(double pixels) {
  if (!host::isCoordinate(pixels)) {
    return tl::make_unexpected(
        fmt::format("{} pixels is outside -32768 to 32767.99; move the corner nearer to the layer", pixels));
  }
  return pixels;
}

}  // namespace

Parsed<Coordinate> checkedCoordinate(double value, bool percent) {
  return (percent ? Parsed<double>(value) : checkedPixels(value)).map([&](double checked) {
    return Coordinate{checked, percent};
  });
}

CornerPositions orLayersOwn(const OptionalCorners& given) {
  constexpr Coordinate kNear{0.0, true};
  constexpr Coordinate kFar{100.0, true};
  CornerPositions corners{{{kNear, kNear}, {kFar, kNear}, {kNear, kFar}, {kFar, kFar}}};
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    corners[c] = given[c].value_or(corners[c]);
  }
  return corners;
}

Parsed<Coordinate> parseCoordinate(std::string_view text) {
  text = trimmed(text);
  std::string_view digits = text;
  const bool percent = !digits.empty() && digits.back() == '%';
  if (percent) {
    digits.remove_suffix(1);
  }
  const auto value = parseNumber(trimmed(digits));
  if (!value) {
    return tl::make_unexpected(
        fmt::format("'{}' {}; give layer pixels (640.5) or percent of the layer (12.5%)", text, value.error()));
  }
  return checkedCoordinate(*value, percent);
}

Parsed<CornerPosition> parseCorner(std::string_view text) {
  const std::size_t comma = text.find(',');
  if (comma == std::string_view::npos || text.find(',', comma + 1) != std::string_view::npos) {
    return tl::make_unexpected(
        fmt::format("'{}' is not a position; give X,Y in layer pixels (640,12.5) or percent (10%,90%)", text));
  }
  const auto x = parseCoordinate(text.substr(0, comma));
  const auto y = parseCoordinate(text.substr(comma + 1));
  if (!x || !y) {
    return tl::make_unexpected(x ? y.error() : x.error());
  }
  return CornerPosition{*x, *y};
}

Parsed<host::Point> toLayerPixels(const CornerPosition& position, host::Size layer) {
  const auto pixels = [](const Coordinate& coordinate, int extent) {
    return checkedPixels(coordinate.percent ? coordinate.value * extent / 100.0 : coordinate.value);
  };
  const auto x = pixels(position.x, layer.width);
  const auto y = pixels(position.y, layer.height);
  if (!x || !y) {
    return tl::make_unexpected(x ? y.error() : x.error());
  }
  return host::Point{*x, *y};
}

}  // namespace vantorel::cli
