// The exact coverage of every pixel by a quadrilateral.
#pragma once

#include <array>

#include "host/Image.h"
#include "host/geometry/ConvexPolygon.h"

namespace vantorel::host {

// A trapezoid with horizontal top and bottom and straight left and right borders.
struct Trapezoid {
  double top = 0.0;
  double bottom = 0.0;
  double left_at_top = 0.0;
  double left_at_bottom = 0.0;
  double right_at_top = 0.0;
  double right_at_bottom = 0.0;
};

// A region's coverage of one row of pixels.
class RowCoverage {
 public:
  // The region covers pixels [begin, end) at least partly and [solid_begin, solid_end) fully. solid_begin = solid_end
  // if no pixel is fully covered, and begin = end if the row is empty.
  int begin = 0;
  int solid_begin = 0;
  int solid_end = 0;
  int end = 0;

  // The covered share, 0 to 1, of a pixel in [begin, end) that is not one of the solid ones.
  double at(int x) const;

 private:
  friend class CoverageRegion;
  // The part of a border within the row: its height, and its range of x.
  struct Border {
    double height;
    double low;
    double high;
  };
  static double shareRightOf(const Border& border, double x);

  static constexpr int kMostBorders = 2 * ConvexPolygon::kMostPoints;
  // Only the first count_ are set: to clear the rest would take longer than all else.
  std::array<Border, kMostBorders / 2> left_;
  std::array<Border, kMostBorders / 2> right_;
  int count_ = 0;
};

// A region made of trapezoids, one below the other.
class CoverageRegion {
 public:
  CoverageRegion() = default;
  explicit CoverageRegion(const ConvexPolygon& polygon);

  // The area that a scan conversion fills between its chains of edges (ScanChains.h). For a convex quadrilateral this
  // is its interior; a concave or self-crossing one is filled partly beyond its outline.
  static CoverageRegion betweenChains(const Corners& corners);

  // The region moved by -origin and then scaled: in the coordinates of a grid that begins at `origin` and has `scale`
  // cells per pixel.
  CoverageRegion onGrid(const Point& origin, double scale) const;

  RowCoverage row(int y) const;

  // Whether every pixel of a part that is not empty is one of its row's solid ones.
  bool covers(const Rect& part) const;

  bool empty() const { return count_ == 0; }
  Box bounds() const;

  // The left and right border at a height; both are 0 above and below the region.
  struct Span {
    double left;
    double right;
  };
  Span spanAt(double y) const;

 private:
  static Span bordersOf(const Trapezoid& trapezoid, double y);
  void add(const Trapezoid& trapezoid);

  static constexpr int kMostTrapezoids = ConvexPolygon::kMostPoints;
  std::array<Trapezoid, kMostTrapezoids> trapezoids_{};
  int count_ = 0;
};

}  // namespace vantorel::host
