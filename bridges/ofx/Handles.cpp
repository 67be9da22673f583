#include "bridges/ofx/Handles.h"

#include <algorithm>
#include <cmath>

namespace vantorel::ofx {
namespace {

const PointD& corner(const Quad& quad, std::size_t place) {
  return quad[kRing[place % kRing.size()]];
}

double cross(const PointD& a, const PointD& b, const PointD& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

// In screen pixels.
double distance(const PointD& a, const PointD& b, const PointD& pixel) {
  return std::hypot((a.x - b.x) / pixel.x, (a.y - b.y) / pixel.y);
}

double distanceToSide(const PointD& a, const PointD& b, const PointD& p, const PointD& pixel) {
  const PointD side{(b.x - a.x) / pixel.x, (b.y - a.y) / pixel.y};
  const PointD way{(p.x - a.x) / pixel.x, (p.y - a.y) / pixel.y};
  const double squared = side.x * side.x + side.y * side.y;
  const double share = squared > 0.0 ? std::clamp((way.x * side.x + way.y * side.y) / squared, 0.0, 1.0) : 0.0;
  return distance({a.x + (b.x - a.x) * share, a.y + (b.y - a.y) * share}, p, pixel);
}

bool isInside(const Quad& quad, const PointD& p) {
  bool inside = false;
  for (std::size_t i = 0; i < kRing.size(); ++i) {
    const PointD& a = corner(quad, i);
    const PointD& b = corner(quad, i + 1);
    if ((a.y > p.y) != (b.y > p.y) && p.x < a.x + (b.x - a.x) * (p.y - a.y) / (b.y - a.y)) {
      inside = !inside;
    }
  }
  return inside;
}

bool sidesCross(const Quad& quad, std::size_t place) {
  const PointD& a = corner(quad, place);
  const PointD& b = corner(quad, place + 1);
  const PointD& c = corner(quad, place + 2);
  const PointD& d = corner(quad, place + 3);
  return cross(a, b, c) * cross(a, b, d) < 0.0 && cross(c, d, a) * cross(c, d, b) < 0.0;
}

}  // namespace

std::optional<Grip> gripAt(const Quad& quad, const PointD& pen, const PointD& pixel) {
  Grip grip;
  double nearest = kHandleRadius;
  for (std::size_t i = 0; i < quad.size(); ++i) {
    if (const double away = distance(quad[i], pen, pixel); away <= nearest) {
      nearest = away;
      grip = {};
      grip.moves[i] = true;
    }
  }
  if (grip != Grip{}) {
    return grip;
  }
  nearest = kSideReach;
  for (std::size_t place = 0; place < kRing.size(); ++place) {
    const double away = distanceToSide(corner(quad, place), corner(quad, place + 1), pen, pixel);
    if (away <= nearest) {
      nearest = away;
      grip = {};
      grip.moves[kRing[place]] = true;
      grip.moves[kRing[(place + 1) % kRing.size()]] = true;
    }
  }
  if (grip == Grip{} && isInside(quad, pen)) {
    grip.moves.fill(true);
  }
  return grip == Grip{} ? std::nullopt : std::optional(grip);
}

const char* degeneracyOf(const Quad& quad) {
  int left_turns = 0;
  int right_turns = 0;
  for (std::size_t i = 0; i < kRing.size(); ++i) {
    const double turn = cross(corner(quad, i), corner(quad, i + 1), corner(quad, i + 2));
    left_turns += turn > 0.0 ? 1 : 0;
    right_turns += turn < 0.0 ? 1 : 0;
  }
  if (left_turns == 4 || right_turns == 4) {
    return nullptr;
  }
  if (sidesCross(quad, 0) || sidesCross(quad, 1)) {
    return "crossed: no perspective";
  }
  return left_turns > 0 && right_turns > 0 ? "notched: no perspective" : "flat: no perspective";
}

}  // namespace vantorel::ofx
