#include "tracks/Quadrilaterals.h"

#include <algorithm>
#include <cmath>

namespace vantorel::tracks {

namespace {

constexpr double kFlattest = 1e-6;
constexpr double kShortestEdge = 1e-12;
constexpr double kStraightCorner = 0.01;  // how close to 1 the cosine of a turn is at a nearly straight corner

const Point& around(const Quadrilateral& q, std::size_t i) {
  return q[kAround[i % kCornerCount]];
}

bool allTurn(const Quadrilateral& q, double sign) {
  for (std::size_t i = 0; i < kCornerCount; ++i) {
    if (!(sign * turn(around(q, i), around(q, i + 1), around(q, i + 2)) > 0.0)) {
      return false;
    }
  }
  return true;
}

Point unitEdge(const Point& a, const Point& b) {
  const double length = distance(a, b);
  const double scale = length > kShortestEdge ? 1.0 / length : 1.0;
  return {(b.x - a.x) * scale, (b.y - a.y) * scale};
}

bool edgesCross(const Point& a, const Point& b, const Point& c, const Point& d) {
  return turn(a, b, c) * turn(a, b, d) < 0.0 && turn(c, d, a) * turn(c, d, b) < 0.0;
}

}  // namespace

double turn(const Point& a, const Point& b, const Point& c) {
  return (b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x);
}

bool isConvex(const Quadrilateral& q) {
  return allTurn(q, 1.0) || allTurn(q, -1.0);
}

bool isConvexClockwise(const Quadrilateral& q) {
  return allTurn(q, 1.0);
}

bool isCrossing(const Quadrilateral& q) {
  return edgesCross(around(q, 0), around(q, 1), around(q, 2), around(q, 3)) ||
         edgesCross(around(q, 1), around(q, 2), around(q, 3), around(q, 0));
}

bool isDegenerate(const Quadrilateral& q) {
  // Checks all four triangles: a self-crossing quadrilateral may have zero area without being a line.
  double largest = 0.0;
  double extent = 0.0;
  for (std::size_t i = 0; i < kCornerCount; ++i) {
    largest = std::max(largest, std::abs(turn(around(q, i), around(q, i + 1), around(q, i + 2))));
    extent = std::max({extent, distance(around(q, i), around(q, i + 1)), distance(around(q, i), around(q, i + 2))});
  }
  return largest <= kFlattest * extent * extent;
}

bool isDrawnBilinearly(const Quadrilateral& q) {
  if (!isConvex(q)) {
    return true;
  }
  for (std::size_t i = 0; i < kCornerCount; ++i) {
    const Point edge = unitEdge(around(q, i), around(q, i + 1));
    const Point next = unitEdge(around(q, i + 1), around(q, i + 2));
    if (std::abs(edge.x * next.x + edge.y * next.y - 1.0) < kStraightCorner) {
      return true;
    }
  }
  return false;
}

double sizeOf(const Quadrilateral& q) {
  return (distance(q[kUpperLeft], q[kLowerRight]) + distance(q[kUpperRight], q[kLowerLeft])) / 2.0;
}

double distance(const Point& a, const Point& b) {
  return std::hypot(b.x - a.x, b.y - a.y);
}

}  // namespace vantorel::tracks
