// Smooth interpolation that never overshoots.
#pragma once

namespace vantorel::host {

// The interval between two knots, with the knots before and after it, if any. Times are ascending.
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
  // the weighted harmonic mean of the slopes on its two sides, 0 if they differ in sign (Fritsch and Butland); at the
  // first and last knot it is the slope of the only side. Between two knots the value therefore stays between theirs.
  double at(double time) const;
};

}  // namespace vantorel::host
