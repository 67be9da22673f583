#include "cli/shots/Enlargement.h"

#include <algorithm>
#include <cmath>

#include "cli/base/Memory.h"

namespace vantorel::cli {

namespace {

constexpr double kLeastEnlargement = 2.0;  // up to here the effect's own interpolation does not show pixels
// Once the layer is enlarged 8 times, the effect's own interpolation of it cannot be distinguished from a larger
// enlargement, whose time and memory would grow with the square of the factor.
constexpr double kMostEnlargement = 8.0;
constexpr int kMaxSide = 16384;  // half of what 16.16 numbers can address

double length(const host::Point& a, const host::Point& b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}

int wholeFactor(double scale) {
  return scale > kLeastEnlargement ? static_cast<int>(std::min(std::ceil(scale), kMostEnlargement)) : 1;
}

struct Scale {
  double x = 0.0;
  double y = 0.0;

  void include(const host::Corners& from, const host::Corners& to) {
    x = std::max({x, length(to.upper_left, to.upper_right) / length(from.upper_left, from.upper_right),
                  length(to.lower_left, to.lower_right) / length(from.lower_left, from.lower_right)});
    y = std::max({y, length(to.upper_left, to.lower_left) / length(from.upper_left, from.lower_left),
                  length(to.upper_right, to.lower_right) / length(from.upper_right, from.lower_right)});
  }
};

}  // namespace

host::Size enlargedSize(host::Size layer, const Enlargement& by) {
  return {layer.width * by.x, layer.height * by.y};
}

Enlargement enlargementFor(const host::AnimatedCorners& corners, const std::optional<host::AnimatedCorners>& source,
                           host::Size layer) {
  const double width = layer.width;
  const double height = layer.height;
  const host::Corners outline{{0.0, 0.0}, {width, 0.0}, {0.0, height}, {width, height}};
  Scale scale;
  const auto include = [&](const host::AnimatedPoint& keyed) {
    for (const host::AnimatedPoint::Key& key : keyed.keys()) {
      scale.include(source ? source->at(key.seconds) : outline, corners.at(key.seconds));
    }
  };
  include(corners.upper_left);
  if (source) {
    include(source->upper_left);
  }
  return {wholeFactor(scale.x), wholeFactor(scale.y)};
}

Enlargement limited(Enlargement wanted, host::Size layer, host::Depth depth, double most_bytes) {
  wanted.x = std::clamp(kMaxSide / layer.width, 1, wanted.x);
  wanted.y = std::clamp(kMaxSide / layer.height, 1, wanted.y);
  while ((wanted.x > 1 || wanted.y > 1) && pictureBytes(enlargedSize(layer, wanted), depth) > most_bytes) {
    --(wanted.x >= wanted.y ? wanted.x : wanted.y);
  }
  return wanted;
}

}  // namespace vantorel::cli
