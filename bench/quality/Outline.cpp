#include "bench/quality/Outline.h"

#include <algorithm>
#include <cmath>

namespace vantorel::quality {

namespace {

double crossingX(const host::Point& from, const host::Point& to, double y) {
  return from.x + (to.x - from.x) * (y - from.y) / (to.y - from.y);
}

// The range of x of an edge between the heights y and y + 1.
std::pair<double, double> extentInRow(const host::Point& upper, const host::Point& lower, int y) {
  const double first = y <= upper.y ? upper.x : crossingX(upper, lower, y);
  const double last = y + 1 >= lower.y ? lower.x : crossingX(upper, lower, y + 1);
  return std::minmax(first, last);
}

// Calls mark(x, y) for the frame's pixels that the edge crosses.
template <typename Mark>
void walkEdge(host::Point upper, host::Point lower, const host::Rect& frame, const Mark& mark) {
  if (upper.y > lower.y) {
    std::swap(upper, lower);
  }
  const int first_row = std::max(frame.top, static_cast<int>(std::floor(upper.y)));
  const int end_row = std::min(frame.bottom, static_cast<int>(std::ceil(lower.y)));
  for (int y = first_row; y < end_row; ++y) {
    const auto [left, right] = extentInRow(upper, lower, y);
    const int first = std::max(frame.left, static_cast<int>(std::floor(left)));
    const int end = std::min(frame.right, static_cast<int>(std::ceil(right)));
    for (int x = first; x < end; ++x) {
      mark(x, y);
    }
  }
}

bool isInside(const Ring& ring, double x, double y) {
  bool inside = false;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const host::Point& from = ring[i];
    const host::Point& to = ring[(i + 1) % ring.size()];
    if ((from.y > y) != (to.y > y) && x < crossingX(from, to, y)) {
      inside = !inside;
    }
  }
  return inside;
}

// A polygon clipped by a half-plane; `distance` is linear, and positive inside the half-plane.
template <typename Distance>
std::vector<host::Point> clipped(const std::vector<host::Point>& polygon, const Distance& distance) {
  std::vector<host::Point> kept;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const host::Point& from = polygon[i];
    const host::Point& to = polygon[(i + 1) % polygon.size()];
    const double at_from = distance(from);
    const double at_to = distance(to);
    if (at_from >= 0) {
      kept.push_back(from);
    }
    if ((at_from >= 0) != (at_to >= 0)) {
      const double share = at_from / (at_from - at_to);
      kept.push_back({from.x + (to.x - from.x) * share, from.y + (to.y - from.y) * share});
    }
  }
  return kept;
}

}  // namespace

host::Rect frameOf(const Ring& ring, host::Size canvas) {
  const auto [left, right] = std::minmax_element(ring.begin(), ring.end(), [](auto& a, auto& b) { return a.x < b.x; });
  const auto [top, bottom] = std::minmax_element(ring.begin(), ring.end(), [](auto& a, auto& b) { return a.y < b.y; });
  return {std::max(0, static_cast<int>(std::floor(left->x))), std::max(0, static_cast<int>(std::floor(top->y))),
          std::min(canvas.width, static_cast<int>(std::ceil(right->x))),
          std::min(canvas.height, static_cast<int>(std::ceil(bottom->y)))};
}

std::vector<Region> regionsOf(const Ring& ring, const host::Rect& frame) {
  std::vector<Region> regions;
  regions.reserve(static_cast<std::size_t>(frame.width()) * static_cast<std::size_t>(frame.height()));
  for (int y = frame.top; y < frame.bottom; ++y) {
    for (int x = frame.left; x < frame.right; ++x) {
      regions.push_back(isInside(ring, x + 0.5, y + 0.5) ? Region::Inside : Region::Outside);
    }
  }
  for (std::size_t i = 0; i < ring.size(); ++i) {
    walkEdge(ring[i], ring[(i + 1) % ring.size()], frame, [&](int x, int y) {
      regions[static_cast<std::size_t>(y - frame.top) * static_cast<std::size_t>(frame.width()) +
              static_cast<std::size_t>(x - frame.left)] = Region::Edge;
    });
  }
  return regions;
}

double coverage(const Ring& ring, int x, int y) {
  std::vector<host::Point> polygon(ring.begin(), ring.end());
  polygon = clipped(polygon, [=](const host::Point& p) { return p.x - x; });
  polygon = clipped(polygon, [=](const host::Point& p) { return x + 1 - p.x; });
  polygon = clipped(polygon, [=](const host::Point& p) { return p.y - y; });
  polygon = clipped(polygon, [=](const host::Point& p) { return y + 1 - p.y; });
  double doubled = 0;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const host::Point& from = polygon[i];
    const host::Point& to = polygon[(i + 1) % polygon.size()];
    doubled += (from.x - x) * (to.y - y) - (to.x - x) * (from.y - y);
  }
  return std::abs(doubled) / 2;
}

}  // namespace vantorel::quality
