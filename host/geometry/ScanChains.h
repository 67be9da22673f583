// How a scan conversion walks a quadrilateral: two chains of edges run down from its highest corner, one in either
// direction, and every row is the span between them, whichever is on the left. A chain moves to its next corner when
// the row has reached or passed it, and the chains end at the lowest corner, where they meet.
#pragma once

#include <array>

#include "host/geometry/ConvexPolygon.h"
#include "host/geometry/Homography.h"

namespace vantorel::host {

// A scan in 16.16 numbers overflows if corners are this many pixels apart along an axis.
inline constexpr double kMaxScanSpread = 32767.0;

// The larger of the width and the height of the corners' bounding box.
double spreadOf(const Corners& corners);

// The range of heights [top, bottom) in which each chain stays on one edge.
struct ScanBand {
  // From one corner to the next down the chain, as indices into upper left, upper right, lower right, lower left.
  struct Edge {
    int from = 0;
    int to = 0;
  };
  double top = 0.0;
  double bottom = 0.0;
  Edge a;
  Edge b;
};

class ScanChains {
 public:
  explicit ScanChains(const Corners& corners);

  std::span<const ScanBand> bands() const { return {bands_.data(), static_cast<std::size_t>(count_)}; }

  // An edge's x at a height; extrapolated beyond its ends.
  double xAt(const ScanBand::Edge& edge, double y) const;

  // The part of the source that the spans show inside a window, in fractions of the source's width and height: (0, 0)
  // is drawn at the upper left corner, (1, 1) at the lower right one. Empty if the window shows nothing.
  Box shownIn(const Box& window) const;

  // The shortest way, in pixels of a layer of that size, of a step of one output pixel in any direction: the smallest
  // singular value of the derivative, looked at in a few places of each band. Infinite when nothing is drawn.
  double shortestStep(double layer_width, double layer_height) const;

 private:
  const Point& corner(int index) const { return ring_[static_cast<std::size_t>(index)]; }
  Point sourceAt(const ScanBand::Edge& edge, double y) const;
  // How x and the position in the layer change with y along an edge.
  struct Slope {
    double x;
    Point source;
  };
  Slope slopeOf(const ScanBand::Edge& edge) const;
  // The derivative of the position in the layer, `share` of the way from chain a to chain b.
  Jacobian derivative(const ScanBand& band, double y, double share) const;
  void add(double y, const ScanBand& band, const Box& window, Box* shown) const;

  static constexpr int kMostBands = 8;
  std::array<Point, 4> ring_;
  std::array<ScanBand, kMostBands> bands_;
  int count_ = 0;
};

}  // namespace vantorel::host
