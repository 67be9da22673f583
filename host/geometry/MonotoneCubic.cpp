#include "host/geometry/MonotoneCubic.h"

namespace vantorel::host {

namespace {

using Knot = CubicInterval::Knot;

double secant(const Knot& a, const Knot& b) {
  return (b.value - a.value) / (b.time - a.time);
}

double slopeAt(const Knot& a, const Knot& b, const Knot& c) {
  const double left = secant(a, b);
  const double right = secant(b, c);
  if (!(left * right > 0.0)) {
    return 0.0;
  }
  const double left_length = b.time - a.time;
  const double right_length = c.time - b.time;
  const double left_weight = 2.0 * right_length + left_length;
  const double right_weight = right_length + 2.0 * left_length;
  return (left_weight + right_weight) / (left_weight / left + right_weight / right);
}

}  // namespace

double CubicInterval::at(double time) const {
  const double length = end.time - begin.time;
  const double chord = secant(begin, end);
  const double first = has_before ? slopeAt(before, begin, end) : chord;
  const double last = has_after ? slopeAt(begin, end, after) : chord;
  const double t = (time - begin.time) / length;
  const double curve = length * t * (1.0 - t) * ((first - chord) * (1.0 - t) - (last - chord) * t);
  return begin.value + (end.value - begin.value) * t + curve;
}

}  // namespace vantorel::host
