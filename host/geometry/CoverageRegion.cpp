#include "host/geometry/CoverageRegion.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/geometry/ScanChains.h"

namespace vantorel::host {

namespace {

// The heights of adjoining trapezoids in a row add up to 1 within this.
constexpr double kRounding = 1e-9;

// Beyond every canvas, but within the range of an int.
constexpr double kFar = 1 << 30;

int floorOf(double value) {
  return static_cast<int>(std::floor(std::clamp(value, -kFar, kFar)));
}
int ceilOf(double value) {
  return static_cast<int>(std::ceil(std::clamp(value, -kFar, kFar)));
}

double between(double from, double to, double share) {
  return from + (to - from) * share;
}

// An edge's x at a height; extrapolated beyond its ends.
double xAt(const Point& from, const Point& to, double y) {
  return to.y == from.y ? from.x : between(from.x, to.x, (y - from.y) / (to.y - from.y));
}

}  // namespace

CoverageRegion::Span CoverageRegion::bordersOf(const Trapezoid& trapezoid, double y) {
  const double share = (y - trapezoid.top) / (trapezoid.bottom - trapezoid.top);
  return {between(trapezoid.left_at_top, trapezoid.left_at_bottom, share),
          between(trapezoid.right_at_top, trapezoid.right_at_bottom, share)};
}

// The mean, over the border's height, of the width of the part of [x, x + 1) that is to the right of it.
double RowCoverage::shareRightOf(const Border& border, double x) {
  const auto integral = [&](double t) {
    if (t <= border.low) {
      return 0.0;
    }
    const double run = border.high - border.low;
    return t >= border.high ? t - border.low - run / 2.0 : (t - border.low) * (t - border.low) / (2.0 * run);
  };
  if (border.high <= x) {
    return 1.0;
  }
  return border.low >= x + 1.0 ? 0.0 : integral(x + 1.0) - integral(x);
}

double RowCoverage::at(int x) const {
  double covered = 0.0;
  for (int i = 0; i < count_; ++i) {
    const Border& left = left_[static_cast<std::size_t>(i)];
    const Border& right = right_[static_cast<std::size_t>(i)];
    covered += left.height * (shareRightOf(left, x) - shareRightOf(right, x));
  }
  return std::clamp(covered, 0.0, 1.0);
}

CoverageRegion::CoverageRegion(const ConvexPolygon& polygon) {
  const std::span<const Point> points = polygon.points();
  std::array<double, ConvexPolygon::kMostPoints> heights{};
  std::transform(points.begin(), points.end(), heights.begin(), [](const Point& p) { return p.y; });
  std::sort(heights.begin(), heights.begin() + static_cast<std::ptrdiff_t>(points.size()));
  for (std::size_t i = 0; i + 1 < points.size(); ++i) {
    Trapezoid part{.top = heights[i], .bottom = heights[i + 1]};
    double left = std::numeric_limits<double>::max();
    double right = std::numeric_limits<double>::lowest();
    for (std::size_t k = 0; k < points.size() && part.top < part.bottom; ++k) {
      const Point& a = points[k];
      const Point& b = points[(k + 1) % points.size()];
      if (std::min(a.y, b.y) > part.top || std::max(a.y, b.y) < part.bottom) {
        continue;
      }
      const double top = xAt(a, b, part.top);
      const double bottom = xAt(a, b, part.bottom);
      if (top + bottom < left) {
        left = top + bottom;
        part.left_at_top = top;
        part.left_at_bottom = bottom;
      }
      if (top + bottom > right) {
        right = top + bottom;
        part.right_at_top = top;
        part.right_at_bottom = bottom;
      }
    }
    add(part);
  }
}

CoverageRegion CoverageRegion::betweenChains(const Corners& corners) {
  const ScanChains chains(corners);
  CoverageRegion region;
  for (const ScanBand& band : chains.bands()) {
    const double a_top = chains.xAt(band.a, band.top);
    const double a_end = chains.xAt(band.a, band.bottom);
    const double b_top = chains.xAt(band.b, band.top);
    const double b_end = chains.xAt(band.b, band.bottom);
    if ((a_top - b_top) * (a_end - b_end) < 0.0) {
      const double share = (a_top - b_top) / ((a_top - b_top) - (a_end - b_end));
      const double x = between(a_top, a_end, share);
      const double crossing = between(band.top, band.bottom, share);
      region.add({band.top, crossing, std::min(a_top, b_top), x, std::max(a_top, b_top), x});
      region.add({crossing, band.bottom, x, std::min(a_end, b_end), x, std::max(a_end, b_end)});
    } else {
      region.add({band.top, band.bottom, std::min(a_top, b_top), std::min(a_end, b_end), std::max(a_top, b_top),
                  std::max(a_end, b_end)});
    }
  }
  return region;
}

void CoverageRegion::add(const Trapezoid& trapezoid) {
  if (trapezoid.top < trapezoid.bottom && count_ < kMostTrapezoids) {
    trapezoids_[static_cast<std::size_t>(count_++)] = trapezoid;
  }
}

CoverageRegion CoverageRegion::onGrid(const Point& origin, double scale) const {
  CoverageRegion moved = *this;
  for (Trapezoid& part : moved.trapezoids_) {
    part = {(part.top - origin.y) * scale,          (part.bottom - origin.y) * scale,
            (part.left_at_top - origin.x) * scale,  (part.left_at_bottom - origin.x) * scale,
            (part.right_at_top - origin.x) * scale, (part.right_at_bottom - origin.x) * scale};
  }
  return moved;
}

RowCoverage CoverageRegion::row(int y) const {
  RowCoverage row;
  double height = 0.0;
  RowCoverage::Border left{0.0, kFar, -kFar};
  RowCoverage::Border right = left;
  const auto widen = [](RowCoverage::Border& range, const RowCoverage::Border& part) {
    range.low = std::min(range.low, part.low);
    range.high = std::max(range.high, part.high);
  };
  for (int i = 0; i < count_; ++i) {
    const Trapezoid& part = trapezoids_[static_cast<std::size_t>(i)];
    const double top = std::max(part.top, static_cast<double>(y));
    const double bottom = std::min(part.bottom, y + 1.0);
    if (!(top < bottom)) {
      continue;
    }
    const double first = (top - part.top) / (part.bottom - part.top);
    const double last = (bottom - part.top) / (part.bottom - part.top);
    const auto border = [&](double at_top, double at_bottom) {
      const auto [low, high] = std::minmax({between(at_top, at_bottom, first), between(at_top, at_bottom, last)});
      return RowCoverage::Border{bottom - top, low, high};
    };
    const auto slot = static_cast<std::size_t>(row.count_++);
    row.left_[slot] = border(part.left_at_top, part.left_at_bottom);
    row.right_[slot] = border(part.right_at_top, part.right_at_bottom);
    widen(left, row.left_[slot]);
    widen(right, row.right_[slot]);
    height += bottom - top;
  }
  if (row.count_ == 0) {
    return row;
  }
  row.begin = floorOf(left.low);
  row.end = std::max(row.begin, ceilOf(right.high));
  row.solid_begin = ceilOf(left.high);
  row.solid_end = floorOf(right.low);
  if (height < 1.0 - kRounding || row.solid_begin >= row.solid_end) {
    row.solid_begin = row.end;
    row.solid_end = row.end;
  }
  return row;
}

// Borders are straight, so they are furthest inside the part where a trapezoid enters or leaves it.
bool CoverageRegion::covers(const Rect& part) const {
  if (empty() || trapezoids_[0].top > part.top + kRounding ||
      trapezoids_[static_cast<std::size_t>(count_ - 1)].bottom < part.bottom - kRounding) {
    return false;
  }
  return std::all_of(trapezoids_.begin(), trapezoids_.begin() + count_, [&](const Trapezoid& trapezoid) {
    const double top = std::max(trapezoid.top, static_cast<double>(part.top));
    const double bottom = std::min(trapezoid.bottom, static_cast<double>(part.bottom));
    if (!(top < bottom)) {
      return true;
    }
    const Span at_top = bordersOf(trapezoid, top);
    const Span at_bottom = bordersOf(trapezoid, bottom);
    return std::max(at_top.left, at_bottom.left) <= part.left && std::min(at_top.right, at_bottom.right) >= part.right;
  });
}

Box CoverageRegion::bounds() const {
  if (empty()) {
    return {};
  }
  Box box{kFar, trapezoids_[0].top, -kFar, trapezoids_[static_cast<std::size_t>(count_ - 1)].bottom};
  for (int i = 0; i < count_; ++i) {
    const Trapezoid& part = trapezoids_[static_cast<std::size_t>(i)];
    box.left = std::min({box.left, part.left_at_top, part.left_at_bottom});
    box.right = std::max({box.right, part.right_at_top, part.right_at_bottom});
  }
  return box;
}

CoverageRegion::Span CoverageRegion::spanAt(double y) const {
  for (int i = 0; i < count_; ++i) {
    const Trapezoid& part = trapezoids_[static_cast<std::size_t>(i)];
    if (y >= part.top && y < part.bottom) {
      return bordersOf(part, y);
    }
  }
  return {0.0, 0.0};
}

}  // namespace vantorel::host
