// Maps canvas positions to the layer. In both, pixel k covers [k, k + 1), and the layer's outline is exactly on the
// corners. Implemented independently of the renderers that are compared with it.
#pragma once

#include <array>
#include <optional>
#include <variant>
#include <vector>

#include "host/Animation.h"
#include "host/Image.h"

namespace vantorel::quality {

// The quadrilateral's corners in order round it: upper left, upper right, lower right, lower left.
using Ring = std::array<host::Point, 4>;

Ring ringOf(const host::Corners& corners);
// The layer's own corners.
Ring ringOf(host::Size layer);

// The image of the layer's outline, moved by `pixels` layer pixels to the right and down, under the projective map that
// takes the unmoved outline to the ring.
Ring imageOfMovedOutline(host::Size layer, const Ring& ring, double pixels);

// One row of positions of a projective map: layer x = (x_at_0 + x_step x) / (w_at_0 + w_step x), and y likewise.
struct ProjectiveRow {
  double x_at_0, x_step;
  double y_at_0, y_step;
  double w_at_0, w_step;
  host::Size layer;

  host::Point position(double x) const {
    const double scale = 1.0 / (w_at_0 + w_step * x);
    return {(x_at_0 + x_step * x) * scale, (y_at_0 + y_step * x) * scale};
  }
  bool covers(double x) const;
};

// The inverse of the homography that takes the layer's outline to a strictly convex quadrilateral.
class ProjectiveMap {
 public:
  ProjectiveMap(host::Size layer, const Ring& ring);
  ProjectiveRow row(double y) const;

 private:
  host::Size layer_;
  std::array<std::array<double, 3>, 3> inverse_{};  // canvas to layer, for column vectors, positive inside
};

// One row of positions of a scan: linear from the left chain of edges to the right one. Above the top corner and below
// the bottom one it covers nothing.
struct ScanRow {
  double left = 0;
  double right = 0;
  host::Point at_left;
  host::Point slope;  // layer pixels per canvas pixel

  host::Point position(double x) const { return {at_left.x + slope.x * (x - left), at_left.y + slope.y * (x - left)}; }
  bool covers(double x) const { return x >= left && x < right; }
};

// Two chains of edges run down from the top corner; positions are linear in y along an edge, and linear in x between
// the chains. Throws std::invalid_argument unless both chains run downwards all the way to the bottom corner.
class ScanMap {
 public:
  ScanMap(host::Size layer, const Ring& ring);
  ScanRow row(double y) const;

 private:
  struct Crossing {
    double x;
    host::Point layer;
  };
  std::vector<int> chainFrom(int top, int bottom, int direction) const;
  Crossing crossing(const std::vector<int>& chain, double y) const;

  Ring ring_;
  Ring layer_ring_;
  std::array<std::vector<int>, 2> chains_;
};

using Mapping = std::variant<ProjectiveMap, ScanMap>;

}  // namespace vantorel::quality
