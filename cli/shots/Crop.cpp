#include "cli/shots/Crop.h"

#include <fmt/format.h>

#include <cmath>
#include <sstream>
#include <vector>

#include "cli/base/CommandError.h"
#include "cli/base/Text.h"

namespace vantorel::cli {

namespace {

std::vector<std::string> splitAtCommas(const std::string& text) {
  std::vector<std::string> parts;
  std::istringstream stream(text + ',');
  for (std::string part; std::getline(stream, part, ',');) {
    parts.push_back(part);
  }
  return parts;
}

Coordinate parseMargin(const std::string& input, const std::string& text) {
  const auto margin = parseCoordinate(text);
  if (!margin) {
    throw badArgument(input, margin.error());
  }
  if (margin->value < 0.0) {
    throw badArgument(input, fmt::format("'{}' is negative; give how much to cut from each side, 0 or more", text));
  }
  if (!margin->percent && margin->value != std::floor(margin->value)) {
    throw badArgument(input, fmt::format("'{}' is not a whole number of pixels; give one, or percent", text));
  }
  return *margin;
}

double pixels(const Coordinate& margin, int extent) {
  return margin.percent ? std::round(margin.value * extent / 100.0) : margin.value;
}

}  // namespace

Crop parseCrop(const std::string& input, const std::string& text) {
  const std::vector<std::string> margins = splitAtCommas(text);
  if (margins.size() != 4) {
    throw badArgument(input,
                      fmt::format("'{}' is not a crop; give how much to cut from the left, the top, the right and "
                                  "the bottom, such as 10,0,10,5%",
                                  text));
  }
  return {parseMargin(input, margins[0]), parseMargin(input, margins[1]), parseMargin(input, margins[2]),
          parseMargin(input, margins[3])};
}

Parsed<host::Rect> remaining(const Crop& crop, host::Size layer) {
  const double left = pixels(crop.left, layer.width);
  const double top = pixels(crop.top, layer.height);
  const double right = layer.width - pixels(crop.right, layer.width);
  const double bottom = layer.height - pixels(crop.bottom, layer.height);
  if (left >= right || top >= bottom) {
    return tl::make_unexpected(
        fmt::format("leaves nothing of the layer, which is {} pixels; cut less from its sides", toText(layer)));
  }
  return host::Rect{static_cast<int>(left), static_cast<int>(top), static_cast<int>(right), static_cast<int>(bottom)};
}

}  // namespace vantorel::cli
