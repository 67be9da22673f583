// Smooth interpolation that never overshoots.
#pragma once

namespace vantorel::host {

// One interval between two knots, with the knots beyond it where there are any. Times rise.
struct CubicInterval {
  struct Knot {
    double time;
    double value;
  };
  Knot before;
  Knot begin;
  Knot end;
  Knot after;
  bool has_before = false;
  bool has_after = false;

  // The value of the piecewise cubic Hermite interpolant at a time of [begin.time, end.time]. The slope at a knot is
  // the weighted harmonic mean of the slopes on its two sides, 0 where they differ in sign (Fritsch and Butland), and
  // at the first and last knot that of the side: so between two knots the value stays between theirs.
  double at(double time) const;
};

}  // namespace vantorel::host
