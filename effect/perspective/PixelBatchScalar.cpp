// The batch computations pixel by pixel: for processors without AVX2, for pixels that the vector code cannot handle,
// and as the reference that the vector code must match to the bit.
#include <algorithm>
#include <cmath>

#include "effect/perspective/PixelBatchVariants.h"
#include "math/Int32FromDouble.h"

namespace {

// 16.16, halves rounded away from zero.
std::int32_t roundedFixed(double value) {
  return int32FromDouble(value * kFixedOne + (value < 0.0 ? -0.5 : 0.5));
}

// Whether the divisor is 0 at a pixel or at one of its neighbours, for the divisor's stepper and the pixel's divisor
// `w`.
bool hasZeroDivisor(const Stepper& stepper, double w) {
  return w == 0.0 || w + stepper.down + stepper.right == 0.0 || w + stepper.right == 0.0 || w + stepper.down == 0.0;
}

// A coordinate of a pixel and of its neighbours.
struct Footprint {
  double centre;
  double right;
  double lower_right;
  double lower;
};

// Goes round the neighbours of the stepper's current pixel and comes back to it.
Footprint visitNeighbours(Stepper* stepper) {
  Footprint footprint;
  footprint.centre = stepper->at;
  footprint.right = footprint.centre + stepper->right;
  footprint.lower_right = footprint.right + stepper->down;
  footprint.lower = footprint.lower_right - stepper->right;
  stepper->at = footprint.lower - stepper->down;
  return footprint;
}

// The larger number; the second one if either is a NaN.
double maxOrSecond(double a, double b) {
  return a > b ? a : b;
}

// The largest distance from a pixel to a neighbour; `w` holds the divisors.
double extentOf(const Footprint& at, const Footprint& w) {
  const double centre = at.centre / w.centre;
  const double right = std::abs(at.right / w.right - centre);
  const double lower_right = std::abs(at.lower_right / w.lower_right - centre);
  const double lower = std::abs(at.lower / w.lower - centre);
  return maxOrSecond(lower, maxOrSecond(lower_right, right));
}

std::int32_t radius(double extent) {
  return std::clamp(roundedFixed(extent), kSmallestExtent, kLargestExtent) >> 1;
}

SampleBoxSize boxOf(double x_extent, double y_extent) {
  const std::int32_t x_radius = radius(x_extent);
  const std::int32_t y_radius = radius(y_extent);
  const double product = static_cast<double>(x_radius) * static_cast<double>(y_radius);
  return {x_radius, y_radius, static_cast<std::int32_t>(product * (1.0 / kFixedOne)) * 4, 0};
}

// Takes a single step with each coordinate and forgets their ranges.
void stepSingly(IncrementalMap* map) {
  for (Stepper* stepper : {&map->u, &map->v, &map->w}) {
    stepper->at += stepper->right;
    stepper->range = 0;
  }
}

bool positions(IncrementalMap* map, const InputScale& scale, int count, PixelBatch* out) {
  bool any_at_infinity = false;
  for (int i = 0; i < count; ++i) {
    stepSingly(map);
    any_at_infinity = scalarPosition(map->u.at, map->v.at, map->w.at, scale, i, out) || any_at_infinity;
  }
  return any_at_infinity;
}

bool footprints(IncrementalMap* map, const InputScale& scale, int count, PixelBatch* out) {
  return scalarFootprints(map, scale, 0, count, out);
}

}  // namespace

bool scalarPosition(double u, double v, double w, const InputScale& scale, int i, PixelBatch* out) {
  out->at_infinity[i] = w == 0.0;
  out->x[i] = int32FromDouble(int32FromDouble(u / w) * scale.x);
  out->y[i] = int32FromDouble(int32FromDouble(v / w) * scale.y);
  return out->at_infinity[i];
}

bool scalarFootprints(IncrementalMap* map, const InputScale& scale, int first, int end, PixelBatch* out) {
  bool any_at_infinity = false;
  for (int i = first; i < end; ++i) {
    stepSingly(map);
    out->at_infinity[i] = hasZeroDivisor(map->w, map->w.at);
    if (out->at_infinity[i]) {
      any_at_infinity = true;
      continue;
    }
    const Footprint u = visitNeighbours(&map->u);
    const Footprint v = visitNeighbours(&map->v);
    const Footprint w = visitNeighbours(&map->w);
    out->box[i] = boxOf(extentOf(u, w) * scale.x, extentOf(v, w) * scale.y);
    out->x[i] = roundedFixed(u.centre / w.centre * scale.x);
    out->y[i] = roundedFixed(v.centre / w.centre * scale.y);
  }
  return any_at_infinity;
}

const PixelBatchFunctions kPixelBatchScalar{positions, footprints};
