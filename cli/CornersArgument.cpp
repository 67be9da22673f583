#include "cli/CornersArgument.h"

#include <fmt/format.h>

#include "cli/CommandError.h"
#include "cli/NumberParsing.h"

namespace vantorel::cli {

namespace {

// 16.16 holds -32768 up to, but not including, 32768.
constexpr double kLowest = -32768.0;
constexpr double kBeyond = 32768.0;

void requireFixedRange(const std::string& input, double pixels) {
  // Negated, so that NaN is refused too.
  if (!(pixels >= kLowest && pixels < kBeyond)) {
    throw badArgument(
        input, fmt::format("{} pixels is outside -32768 to 32767.99; move the corner nearer to the layer", pixels));
  }
}

}  // namespace

Coordinate parseCoordinate(const std::string& input, std::string_view text) {
  text = trimmed(text);
  std::string_view digits = text;
  const bool percent = !digits.empty() && digits.back() == '%';
  if (percent) {
    digits.remove_suffix(1);
  }
  const auto value = parseNumber(trimmed(digits));
  if (!value) {
    throw badArgument(
        input, fmt::format("'{}' {}; give layer pixels (640.5) or percent of the layer (12.5%)", text, value.error()));
  }
  if (!percent) {
    requireFixedRange(input, *value);
  }
  return {*value, percent};
}

CornerPosition parseCorner(const std::string& input, std::string_view text) {
  const std::size_t comma = text.find(',');
  if (comma == std::string_view::npos || text.find(',', comma + 1) != std::string_view::npos) {
    throw badArgument(
        input, fmt::format("'{}' is not a position; give X,Y in layer pixels (640,12.5) or percent (10%,90%)", text));
  }
  return {parseCoordinate(input, text.substr(0, comma)), parseCoordinate(input, text.substr(comma + 1))};
}

host::Point toLayerPixels(const std::string& input, const CornerPosition& position, host::Size layer) {
  const auto pixels = [&](const Coordinate& coordinate, int extent) {
    const double value = coordinate.percent ? coordinate.value * extent / 100.0 : coordinate.value;
    requireFixedRange(input, value);
    return value;
  };
  return {pixels(position.x, layer.width), pixels(position.y, layer.height)};
}

}  // namespace vantorel::cli
