#include "host/geometry/ScanChains.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vantorel::host {

namespace {

struct Chain {
  ScanBand::Edge edge;
  int step;

  void advance() { edge = {edge.to, (edge.to + step) & 3}; }
};

Point between(const Point& from, const Point& to, double share) {
  return {from.x + (to.x - from.x) * share, from.y + (to.y - from.y) * share};
}

Point sourceCorner(int index) {
  constexpr std::array<Point, 4> kSquare{{{0.0, 0.0}, {1.0, 0.0}, {1.0, 1.0}, {0.0, 1.0}}};
  return kSquare[static_cast<std::size_t>(index)];
}

double smallestSingularValue(const Jacobian& j) {
  const double squares = j.xx * j.xx + j.xy * j.xy + j.yx * j.yx + j.yy * j.yy;  // the sum of both values' squares
  const double product = j.xx * j.yy - j.xy * j.yx;
  const double difference = std::sqrt(std::max(squares * squares - 4.0 * product * product, 0.0));
  return std::sqrt(std::max((squares - difference) / 2.0, 0.0));
}

bool isEmpty(const Box& box) {
  return !(box.left < box.right && box.top < box.bottom);
}

void include(const Point& p, Box* box) {
  *box = {std::min(box->left, p.x), std::min(box->top, p.y), std::max(box->right, p.x), std::max(box->bottom, p.y)};
}

constexpr Box kNothing{2.0, 2.0, -1.0, -1.0};

}  // namespace

double spreadOf(const Corners& corners) {
  Box box{corners[0].x, corners[0].y, corners[0].x, corners[0].y};
  for (std::size_t i = 1; i < kCornerCount; ++i) {
    include(corners[i], &box);
  }
  return std::max(box.right - box.left, box.bottom - box.top);
}

ScanChains::ScanChains(const Corners& corners)
    : ring_{corners.upper_left, corners.upper_right, corners.lower_right, corners.lower_left} {
  const auto higher = [](const Point& a, const Point& b) { return a.y < b.y; };
  const int top = static_cast<int>(std::min_element(ring_.begin(), ring_.end(), higher) - ring_.begin());
  const double bottom = std::max_element(ring_.begin(), ring_.end(), higher)->y;
  Chain a{{top, (top - 1) & 3}, -1};
  Chain b{{top, (top + 1) & 3}, 1};
  double y = corner(top).y;
  while (y < bottom && count_ < kMostBands) {
    while (a.edge.to != b.edge.to && y >= corner(a.edge.to).y) {
      a.advance();
    }
    while (b.edge.to != a.edge.to && y >= corner(b.edge.to).y) {
      b.advance();
    }
    const double end = std::min(corner(a.edge.to).y, corner(b.edge.to).y);
    if (!(end > y)) {
      break;
    }
    bands_[static_cast<std::size_t>(count_++)] = {y, end, a.edge, b.edge};
    y = end;
  }
}

double ScanChains::xAt(const ScanBand::Edge& edge, double y) const {
  const Point& from = corner(edge.from);
  const Point& to = corner(edge.to);
  return to.y == from.y ? from.x : from.x + (to.x - from.x) * ((y - from.y) / (to.y - from.y));
}

Point ScanChains::sourceAt(const ScanBand::Edge& edge, double y) const {
  const double rise = corner(edge.to).y - corner(edge.from).y;
  const double share = rise == 0.0 ? 0.0 : std::clamp((y - corner(edge.from).y) / rise, 0.0, 1.0);
  return between(sourceCorner(edge.from), sourceCorner(edge.to), share);
}

// Extends `shown` by the part that one row shows in the window's columns.
void ScanChains::add(double y, const ScanBand& band, const Box& window, Box* shown) const {
  constexpr double kShort = 4.0;  // for spans this short, the scan's rounding decides whether they are in the window
  const double a = xAt(band.a, y);
  const double b = xAt(band.b, y);
  if (std::max(a, b) < window.left || std::min(a, b) > window.right) {
    return;
  }
  const Point at_a = sourceAt(band.a, y);
  const Point at_b = sourceAt(band.b, y);
  const bool is_short = std::abs(b - a) < kShort;
  const auto share = [&](double x) { return std::clamp((x - a) / (b - a), 0.0, 1.0); };
  include(is_short ? at_a : between(at_a, at_b, share(window.left)), shown);
  include(is_short ? at_b : between(at_a, at_b, share(window.right)), shown);
}

Box ScanChains::shownIn(const Box& window) const {
  constexpr double kStep = 0.25;  // rows in between add at most as much as the next step does
  Box shown = kNothing;
  double widest_step = 0.0;
  for (const ScanBand& band : bands()) {
    const double top = std::max(band.top, window.top);
    const double bottom = std::min(band.bottom, window.bottom);
    for (double y = top; top <= bottom && y < bottom + kStep; y += kStep) {
      const Box before = shown;
      add(std::min(y, bottom), band, window, &shown);
      if (!isEmpty(before)) {
        widest_step = std::max({widest_step, before.left - shown.left, before.top - shown.top,
                                shown.right - before.right, shown.bottom - before.bottom});
      }
    }
  }
  if (shown.left > shown.right) {
    return {};
  }
  return {shown.left - widest_step, shown.top - widest_step, shown.right + widest_step, shown.bottom + widest_step};
}

ScanChains::Slope ScanChains::slopeOf(const ScanBand::Edge& edge) const {
  const double rise = corner(edge.to).y - corner(edge.from).y;
  const Point from = sourceCorner(edge.from);
  const Point to = sourceCorner(edge.to);
  return {(corner(edge.to).x - corner(edge.from).x) / rise, {(to.x - from.x) / rise, (to.y - from.y) / rise}};
}

Jacobian ScanChains::derivative(const ScanBand& band, double y, double share) const {
  const Point at_a = sourceAt(band.a, y);
  const Point at_b = sourceAt(band.b, y);
  const double width = xAt(band.b, y) - xAt(band.a, y);
  const Point across{(at_b.x - at_a.x) / width, (at_b.y - at_a.y) / width};
  const Slope a = slopeOf(band.a);
  const Slope b = slopeOf(band.b);
  // Down at the same share of the way, less the way back across.
  const Point down = between(a.source, b.source, share);
  const double shift = a.x + (b.x - a.x) * share;
  return {across.x, down.x - across.x * shift, across.y, down.y - across.y * shift};
}

double ScanChains::shortestStep(double layer_width, double layer_height) const {
  double shortest = std::numeric_limits<double>::infinity();
  for (const ScanBand& band : bands()) {
    for (const double height : {0.01, 0.5, 0.99}) {  // chains may meet at the ends
      for (const double share : {0.0, 0.5, 1.0}) {
        const Jacobian j = derivative(band, band.top + (band.bottom - band.top) * height, share);
        shortest = std::min(shortest, smallestSingularValue({j.xx * layer_width, j.xy * layer_width,
                                                             j.yx * layer_height, j.yy * layer_height}));
      }
    }
  }
  return shortest;
}

}  // namespace vantorel::host
