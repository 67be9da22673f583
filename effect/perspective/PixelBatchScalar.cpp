// The block computations pixel by pixel: for every machine, for the pixels that vectors leave over, and the reference
// that the vectors must equal to the bit.
#include <algorithm>
#include <cmath>

#include "effect/FixedPoint.h"
#include "effect/perspective/PixelBatchScalar.h"
#include "math/Int32FromDouble.h"

namespace {

// The extent of a pixel's box in the input, 16.16: one to 16 pixels.
constexpr std::int32_t kSmallestExtent = kFixedOne;
constexpr std::int32_t kLargestExtent = 16 * kFixedOne;

// 16.16, halves rounded away from zero.
std::int32_t roundedFixed(double value) {
  return int32FromDouble(value * kFixedOne + (value < 0.0 ? -0.5 : 0.5));
}

// For the divisor's walk at a pixel whose divisor is `w`.
bool hasZeroDivisor(const CoordinateWalk& walk, double w) {
  return w == 0.0 || w + walk.down + walk.right == 0.0 || w + walk.right == 0.0 || w + walk.down == 0.0;
}

// A coordinate of a pixel and its neighbours.
struct Neighbourhood {
  double centre;
  double right;
  double lower_right;
  double lower;
};

// Walks round the neighbours of the pixel at `centre`, and back.
Neighbourhood goRound(double centre, CoordinateWalk* walk) {
  Neighbourhood around;
  around.centre = centre;
  around.right = centre + walk->right;
  around.lower_right = around.right + walk->down;
  around.lower = around.lower_right - walk->right;
  walk->at = around.lower - walk->down;
  return around;
}

double larger(double a, double b) {
  return a < b ? b : a;
}

// The largest distance from a pixel to a neighbour, where w holds the divisors.
double extentOf(const Neighbourhood& at, const Neighbourhood& w) {
  const double centre = at.centre / w.centre;
  const double right = std::abs(at.right / w.right - centre);
  const double lower_right = std::abs(at.lower_right / w.lower_right - centre);
  const double lower = std::abs(at.lower / w.lower - centre);
  return larger(larger(right, lower_right), lower);
}

std::int32_t radius(double extent) {
  return std::clamp(roundedFixed(extent), kSmallestExtent, kLargestExtent) >> 1;
}

SampleBoxSize boxOf(double x_extent, double y_extent) {
  const std::int32_t x_radius = radius(x_extent);
  const std::int32_t y_radius = radius(y_extent);
  const double product = static_cast<double>(x_radius) * static_cast<double>(y_radius);
  return {x_radius, y_radius, static_cast<std::int32_t>(product * (1.0 / 65536.0)) * 4, 0};
}

// After steps that the runs were not told of.
void forgetRuns(RowWalk* walk) {
  walk->u.run = 0;
  walk->v.run = 0;
  walk->w.run = 0;
}

bool positionsOfBlock(RowWalk* walk, const InputScale& scale, int count, PixelBlock* out) {
  bool any_nowhere = false;
  for (int i = 0; i < count; ++i) {
    walk->u.at += walk->u.right;
    walk->v.at += walk->v.right;
    walk->w.at += walk->w.right;
    any_nowhere = storePlainPosition(walk->u.at, walk->v.at, walk->w.at, scale, i, out) || any_nowhere;
  }
  forgetRuns(walk);
  return any_nowhere;
}

bool footprintsOfBlock(RowWalk* walk, const InputScale& scale, int count, PixelBlock* out) {
  return plainFootprints(walk, scale, 0, count, out);
}

}  // namespace

bool storePlainPosition(double u, double v, double w, const InputScale& scale, int i, PixelBlock* out) {
  out->lies_nowhere[i] = w == 0.0;
  out->x[i] = int32FromDouble(int32FromDouble(u / w) * scale.x);
  out->y[i] = int32FromDouble(int32FromDouble(v / w) * scale.y);
  return out->lies_nowhere[i];
}

bool plainFootprints(RowWalk* walk, const InputScale& scale, int first, int end, PixelBlock* out) {
  bool any_nowhere = false;
  for (int i = first; i < end; ++i) {
    walk->u.at += walk->u.right;
    walk->v.at += walk->v.right;
    walk->w.at += walk->w.right;
    out->lies_nowhere[i] = hasZeroDivisor(walk->w, walk->w.at);
    if (out->lies_nowhere[i]) {
      any_nowhere = true;
      continue;
    }
    const Neighbourhood u = goRound(walk->u.at, &walk->u);
    const Neighbourhood v = goRound(walk->v.at, &walk->v);
    const Neighbourhood w = goRound(walk->w.at, &walk->w);
    out->box[i] = boxOf(extentOf(u, w) * scale.x, extentOf(v, w) * scale.y);
    out->x[i] = roundedFixed(u.centre / w.centre * scale.x);
    out->y[i] = roundedFixed(v.centre / w.centre * scale.y);
  }
  forgetRuns(walk);
  return any_nowhere;
}

const RowBlockFunctions kRowBlocksPlain{positionsOfBlock, footprintsOfBlock};
