// The exact share of every pixel that a quadrilateral covers.
#pragma once

#include <array>

#include "host/geometry/ConvexPolygon.h"

namespace vantorel::host {

// A part of the plane between two heights whose left and right borders are straight.
struct Trapezoid {
  double top = 0.0;
  double bottom = 0.0;
  double left_at_top = 0.0;
  double left_at_bottom = 0.0;
  double right_at_top = 0.0;
  double right_at_bottom = 0.0;
};

// What one row of pixels shares with a region.
class RowCoverage {
 public:
  // Pixels [begin, end) meet the region, those of [solid_begin, solid_end) wholly; solid_begin = solid_end when none
  // does, and begin = end when the row is empty.
  int begin = 0;
  int solid_begin = 0;
  int solid_end = 0;
  int end = 0;

  // The covered share of a pixel of [begin, end) outside the solid ones, 0 to 1.
  double at(int x) const;

 private:
  friend class CoverageRegion;
  // The part of a border that lies in the row: the height it takes, and the range of its x.
  struct Border {
    double height;
    double low;
    double high;
  };
  static double shareRightOf(const Border& border, double x);

  static constexpr int kMostBorders = 2 * ConvexPolygon::kMostPoints;
  std::array<Border, kMostBorders / 2> left_{};
  std::array<Border, kMostBorders / 2> right_{};
  int count_ = 0;
};

// A region made of trapezoids, one under the other.
class CoverageRegion {
 public:
  CoverageRegion() = default;
  explicit CoverageRegion(const ConvexPolygon& polygon);

  // What a scan conversion fills between its chains of edges (ScanChains.h). For a convex quadrilateral that is its
  // inside; one with a notch or a crossing is filled in part beyond its outline.
  static CoverageRegion betweenChains(const Corners& corners);

  // The region moved by -origin, then enlarged: in the pixels of a grid that begins there, `scale` of them a pixel.
  CoverageRegion onGrid(const Point& origin, double scale) const;

  RowCoverage row(int y) const;

  bool empty() const { return count_ == 0; }
  Box bounds() const;

  // Left and right border at a height; both 0 above and below the region.
  struct Span {
    double left;
    double right;
  };
  Span spanAt(double y) const;

 private:
  void add(const Trapezoid& trapezoid);

  static constexpr int kMostTrapezoids = ConvexPolygon::kMostPoints;
  std::array<Trapezoid, kMostTrapezoids> trapezoids_{};
  int count_ = 0;
};

}  // namespace vantorel::host
