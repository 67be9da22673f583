#include "bridges/ofx/Geometry.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vantorel::ofx {

bool isFinite(const PointD& point) {
  return std::isfinite(point.x) && std::isfinite(point.y);
}

bool isBounded(const RectD& rect) {
  constexpr double kFarthest = 1 << 24;
  return rect.x1 > -kFarthest && rect.y1 > -kFarthest && rect.x2 < kFarthest && rect.y2 < kFarthest;
}

bool isBounded(const RectI& rect) {
  return isBounded(RectD{1.0 * rect.x1, 1.0 * rect.y1, 1.0 * rect.x2, 1.0 * rect.y2});
}

PixelScale PixelScale::of(const PointD& render_scale, double pixel_aspect, bool is_field) {
  return {render_scale.x / pixel_aspect, render_scale.y * (is_field ? 0.5 : 1.0)};
}

RectD pixelsOf(const RectD& canonical, const PixelScale& scale) {
  return {canonical.x1 * scale.x, canonical.y1 * scale.y, canonical.x2 * scale.x, canonical.y2 * scale.y};
}

std::optional<RectI> pixelsRound(const RectD& pixels) {
  if (!isBounded(pixels) || !(pixels.x1 < pixels.x2 && pixels.y1 < pixels.y2)) {
    return std::nullopt;
  }
  return RectI{static_cast<int>(std::floor(pixels.x1)), static_cast<int>(std::floor(pixels.y1)),
               static_cast<int>(std::ceil(pixels.x2)), static_cast<int>(std::ceil(pixels.y2))};
}

host::Point Plane::at(const host::Point& canonical) const {
  return {canonical.x * scale.x - left, top - canonical.y * scale.y};
}

host::Corners Plane::at(const host::Corners& canonical) const {
  return {at(canonical.upper_left), at(canonical.upper_right), at(canonical.lower_left), at(canonical.lower_right)};
}

host::Rect Plane::at(const RectI& pixels) const {
  const auto from_left = static_cast<int>(left);
  const auto from_top = static_cast<int>(top);
  return {pixels.x1 - from_left, from_top - pixels.y2, pixels.x2 - from_left, from_top - pixels.y1};
}

std::optional<std::size_t> unreachable(const host::Corners& corners) {
  for (std::size_t i = 0; i < host::kCornerCount; ++i) {
    if (!host::isCoordinate(corners[i].x) || !host::isCoordinate(corners[i].y)) {
      return i;
    }
  }
  return std::nullopt;
}

bool areOutline(const host::Corners& corners, double width, double height) {
  const host::Corners outline{{0.0, 0.0}, {width, 0.0}, {0.0, height}, {width, height}};
  constexpr double kHalfDigit = 0.5 / 65536.0;
  bool are_equal = true;
  for (std::size_t i = 0; i < host::kCornerCount; ++i) {
    are_equal = are_equal && std::abs(corners[i].x - outline[i].x) < kHalfDigit &&
                std::abs(corners[i].y - outline[i].y) < kHalfDigit;
  }
  return are_equal;
}

RectD boundsOf(const host::Corners& corners, const PixelScale& scale, double margin) {
  RectD box{corners[0].x, corners[0].y, corners[0].x, corners[0].y};
  for (std::size_t i = 1; i < host::kCornerCount; ++i) {
    box = united(box, {corners[i].x, corners[i].y, corners[i].x, corners[i].y});
  }
  const double across = margin / scale.x;
  const double up = margin / scale.y;
  return {box.x1 - across, box.y1 - up, box.x2 + across, box.y2 + up};
}

RectD united(const RectD& a, const RectD& b) {
  return {std::min(a.x1, b.x1), std::min(a.y1, b.y1), std::max(a.x2, b.x2), std::max(a.y2, b.y2)};
}

RectD common(const RectD& part, const RectD& within) {
  const auto cut = [](double low, double high, double from, double to) {
    const double begin = std::clamp(low, from, std::max(from, to - 1.0));
    return std::pair(begin, std::clamp(high, std::min(begin + 1.0, to), to));
  };
  const auto [x1, x2] = cut(part.x1, part.x2, within.x1, within.x2);
  const auto [y1, y2] = cut(part.y1, part.y2, within.y1, within.y2);
  return {x1, y1, x2, y2};
}

RectI common(const RectI& a, const RectI& b) {
  return {std::max(a.x1, b.x1), std::max(a.y1, b.y1), std::min(a.x2, b.x2), std::min(a.y2, b.y2)};
}

}  // namespace vantorel::ofx
