#include "cli/shots/Enlargement.h"

#include <algorithm>
#include <cmath>

#include "cli/base/Memory.h"

namespace vantorel::cli {

namespace {

constexpr double kLeastEnlargement = 2.0;  // the effect's own interpolation shows no pixels up to here
constexpr int kMaxSide = 16384;            // half of what 16.16 numbers can address

double length(const host::Point& a, const host::Point& b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}

int wholeFactor(double edge, int side) {
  const double scale = edge / side;
  return scale > kLeastEnlargement ? static_cast<int>(std::min(std::ceil(scale), double{kMaxSide})) : 1;
}

}  // namespace

host::Size enlargedSize(host::Size layer, const Enlargement& by) {
  return {layer.width * by.x, layer.height * by.y};
}

Enlargement enlargementFor(const host::AnimatedCorners& corners, host::Size layer) {
  double width = 0.0;
  double height = 0.0;
  for (const host::AnimatedPoint::Key& key : corners.upper_left.keys()) {
    const host::Corners at = corners.at(key.seconds);
    width = std::max({width, length(at.upper_left, at.upper_right), length(at.lower_left, at.lower_right)});
    height = std::max({height, length(at.upper_left, at.lower_left), length(at.upper_right, at.lower_right)});
  }
  return {wholeFactor(width, layer.width), wholeFactor(height, layer.height)};
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
