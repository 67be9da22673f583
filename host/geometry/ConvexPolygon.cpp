#include "host/geometry/ConvexPolygon.h"

#include <algorithm>
#include <cmath>

namespace vantorel::host {

ConvexPolygon::ConvexPolygon(const Corners& corners) {
  for (const Point& point : {corners.upper_left, corners.upper_right, corners.lower_right, corners.lower_left}) {
    add(point);
  }
}

ConvexPolygon::ConvexPolygon(const Box& box)
    : ConvexPolygon(
          Corners{{box.left, box.top}, {box.right, box.top}, {box.left, box.bottom}, {box.right, box.bottom}}) {}

void ConvexPolygon::add(const Point& point) {
  if (count_ < kMostPoints) {
    points_[static_cast<std::size_t>(count_++)] = point;
  }
}

ConvexPolygon ConvexPolygon::cut(double a, double b, double c) const {
  ConvexPolygon kept;
  const auto side = [&](const Point& p) { return a * p.x + b * p.y + c; };
  const std::span<const Point> all = points();
  for (std::size_t i = 0; i < all.size(); ++i) {
    const Point& from = all[i];
    const Point& to = all[(i + 1) % all.size()];
    const double from_side = side(from);
    const double to_side = side(to);
    if (from_side >= 0.0) {
      kept.add(from);
    }
    if ((from_side > 0.0 && to_side < 0.0) || (from_side < 0.0 && to_side > 0.0)) {
      const double share = from_side / (from_side - to_side);
      kept.add({from.x + (to.x - from.x) * share, from.y + (to.y - from.y) * share});
    }
  }
  return kept;
}

ConvexPolygon ConvexPolygon::cut(const Box& box) const {
  return cut(1, 0, -box.left).cut(-1, 0, box.right).cut(0, 1, -box.top).cut(0, -1, box.bottom);
}

ConvexPolygon ConvexPolygon::mappedBy(const Homography& map) const {
  ConvexPolygon image;
  for (const Point& point : points()) {
    image.add(map(point));
  }
  return image;
}

double ConvexPolygon::area() const {
  double twice = 0.0;
  const std::span<const Point> all = points();
  for (std::size_t i = 1; i + 1 < all.size(); ++i) {
    twice += (all[i].x - all[0].x) * (all[i + 1].y - all[0].y) - (all[i + 1].x - all[0].x) * (all[i].y - all[0].y);
  }
  return std::abs(twice) / 2.0;
}

Point ConvexPolygon::middle() const {
  Point sum;
  for (const Point& point : points()) {
    sum.x += point.x / count_;
    sum.y += point.y / count_;
  }
  return sum;
}

Box ConvexPolygon::bounds() const {
  if (count_ == 0) {
    return {};
  }
  Box box{points_[0].x, points_[0].y, points_[0].x, points_[0].y};
  for (const Point& point : points()) {
    box = {std::min(box.left, point.x), std::min(box.top, point.y), std::max(box.right, point.x),
           std::max(box.bottom, point.y)};
  }
  return box;
}

std::optional<Corners> imageOf(const Box& box, const Homography& map) {
  const Corners rectangle{{box.left, box.top}, {box.right, box.top}, {box.left, box.bottom}, {box.right, box.bottom}};
  for (std::size_t i = 0; i < kCornerCount; ++i) {
    if (!(map.weight(rectangle[i]) > 0.0)) {
      return std::nullopt;
    }
  }
  return map(rectangle);
}

}  // namespace vantorel::host
