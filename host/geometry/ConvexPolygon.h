// Convex polygons with few corners, and clipping without allocation.
#pragma once

#include <array>
#include <optional>
#include <span>

#include "host/Animation.h"
#include "host/geometry/Homography.h"

namespace vantorel::host {

// A rectangle of the plane, edges in pixels.
struct Box {
  double left = 0.0;
  double top = 0.0;
  double right = 0.0;
  double bottom = 0.0;
};

// The corners of a convex polygon in order, in either direction. With fewer than three points it is empty.
class ConvexPolygon {
 public:
  // Each cut of a convex polygon adds at most one point, so a quadrilateral can be cut twelve times.
  static constexpr int kMostPoints = 16;

  ConvexPolygon() = default;
  explicit ConvexPolygon(const Corners& corners);
  explicit ConvexPolygon(const Box& box);

  std::span<const Point> points() const { return {points_.data(), static_cast<std::size_t>(count_)}; }
  bool empty() const { return count_ < 3; }

  // The part where a * x + b * y + c >= 0.
  ConvexPolygon cut(double a, double b, double c) const;
  ConvexPolygon cut(const Box& box) const;

  // The image under a map whose horizon does not intersect the polygon.
  ConvexPolygon mappedBy(const Homography& map) const;

  double area() const;
  Point middle() const;  // the mean of its points, which is inside it
  Box bounds() const;

 private:
  void add(const Point& point);

  std::array<Point, kMostPoints> points_{};
  int count_ = 0;
};

// The images of a rectangle's corners; empty if the map's horizon intersects the rectangle, or if it lies beyond the
// horizon.
std::optional<Corners> imageOf(const Box& box, const Homography& map);

}  // namespace vantorel::host
