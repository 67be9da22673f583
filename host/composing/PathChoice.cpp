#include "host/composing/PathChoice.h"

#include <array>
#include <cmath>

namespace vantorel::host {

namespace {

constexpr double kStraight = 0.01;  // 1 minus the cosine of the turn
constexpr double kNoLength = 1e-12;

// The orientation of the turn at `b`. For collinear points it is also 1 or -1, depending on their order, or 0 if c is
// between a and b.
int turn(const Point& a, const Point& b, const Point& c) {
  const Point ab{b.x - a.x, b.y - a.y};
  const Point ac{c.x - a.x, c.y - a.y};
  if (ab.x * ac.y != ab.y * ac.x) {
    return ab.x * ac.y > ab.y * ac.x ? 1 : -1;
  }
  if (ab.x * ac.x < 0.0 || ab.y * ac.y < 0.0) {
    return -1;
  }
  return ab.x * ab.x + ab.y * ab.y < ac.x * ac.x + ac.y * ac.y ? 1 : 0;
}

Point direction(const Point& a, const Point& b) {
  const Point edge{b.x - a.x, b.y - a.y};
  const double length = std::sqrt(edge.x * edge.x + edge.y * edge.y);
  return length > kNoLength ? Point{edge.x / length, edge.y / length} : edge;
}

// The corners that the effect computes: the images of the layer's corners under its map. They differ from the given
// ones if the lower right corner is collinear with its neighbours.
std::array<Point, 4> ringOf(const Corners& corners) {
  const std::array<Point, 4> ring{corners.upper_left, corners.upper_right, corners.lower_right, corners.lower_left};
  const Point across{ring[1].x - ring[2].x, ring[1].y - ring[2].y};
  const Point down{ring[3].x - ring[2].x, ring[3].y - ring[2].y};
  if (across.x * down.y - across.y * down.x != 0.0) {
    return ring;
  }
  constexpr double kDeterminant = 0.0001;  // what the effect uses instead of 0
  const Point skew{ring[0].x - ring[1].x + ring[2].x - ring[3].x, ring[0].y - ring[1].y + ring[2].y - ring[3].y};
  const double g = (skew.x * down.y - down.x * skew.y) / kDeterminant;
  const double h = (across.x * skew.y - across.y * skew.x) / kDeterminant;
  const double w = g + h + 1.0;
  const auto opposite = [&](double Point::*axis) {
    return ((1.0 + g) * ring[1].*axis + (1.0 + h) * ring[3].*axis - ring[0].*axis) / w;
  };
  return {ring[0], ring[1], {opposite(&Point::x), opposite(&Point::y)}, ring[3]};
}

}  // namespace

RenderPath pathOf(const Corners& corners) {
  const std::array<Point, 4> ring = ringOf(corners);
  const auto at = [&](std::size_t i) { return ring[i % ring.size()]; };
  const int first = turn(at(0), at(1), at(2));
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const Point before = direction(at(i), at(i + 1));
    const Point after = direction(at(i + 1), at(i + 2));
    const bool is_straight = std::abs(before.x * after.x + before.y * after.y - 1.0) < kStraight;
    if (first == 0 || turn(at(i), at(i + 1), at(i + 2)) != first || is_straight) {
      return RenderPath::Bilinear;
    }
  }
  return RenderPath::Perspective;
}

}  // namespace vantorel::host
