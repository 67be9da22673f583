#include "host/composing/SampleCount.h"

#include <algorithm>
#include <cmath>

namespace vantorel::host {

namespace {

constexpr double kLargestBox = 16.0;

// The distance, along one axis of the layer, to the furthest of the neighbours that the effect evaluates, for steps of
// `a` to the right and `b` down.
double reach(double a, double b) {
  return std::max({std::abs(a), std::abs(b), std::abs(a + b)});
}

// The side of the effect's box along that axis.
double boxSide(double a, double b) {
  return std::clamp(reach(a, b), 1.0, kLargestBox);
}

// Whether boxes of the maximum size are so far apart that layer pixels between them are never sampled.
bool leavesGaps(const Jacobian& j, int samples) {
  return std::max(reach(j.xx, j.xy), reach(j.yx, j.yy)) > kLargestBox * samples;
}

}  // namespace

FilterError filterError(const Jacobian& j, int samples) {
  const double step = 1.0 / samples;
  const double box_x = boxSide(j.xx * step, j.xy * step);
  const double box_y = boxSide(j.yx * step, j.yy * step);
  const double jj_xx = j.xx * j.xx + j.xy * j.xy;
  const double jj_xy = j.xx * j.yx + j.xy * j.yy;
  const double jj_yy = j.yx * j.yx + j.yy * j.yy;
  // The difference D and the ideal variance T, both times 12; symmetric matrices.
  const double d_xx = box_x * box_x - 1.0 - jj_xx * step * step;
  const double d_xy = -jj_xy * step * step;
  const double d_yy = box_y * box_y - 1.0 - jj_yy * step * step;
  const double t_xx = jj_xx + 2.0;
  const double t_yy = jj_yy + 2.0;
  // The extremes of e^T D e / e^T T e are the roots of det(D - r T) = 0, a quadratic in r.
  const double a = t_xx * t_yy - jj_xy * jj_xy;
  const double half_b = (d_xx * t_yy + d_yy * t_xx) / 2.0 - d_xy * jj_xy;
  const double c = d_xx * d_yy - d_xy * d_xy;
  const double root = std::sqrt(std::max(half_b * half_b - a * c, 0.0));
  return {std::max((half_b + root) / a, 0.0), std::max((root - half_b) / a, 0.0)};
}

int samplesForFilter(const Jacobian& layer_per_pixel) {
  const auto is_enough = [&](int samples) {
    const FilterError error = filterError(layer_per_pixel, samples);
    const double sharp_limit = samples == 1 ? kSharpLimitOfOne : kSharpLimit;
    return error.soft <= kSoftLimit && error.sharp <= sharp_limit && !leavesGaps(layer_per_pixel, samples);
  };
  const auto* const found = std::find_if(kSampleCounts.begin(), kSampleCounts.end(), is_enough);
  return found == kSampleCounts.end() ? kMostSamples : *found;
}

bool hasSmallestBox(const Jacobian& layer_per_pixel, int samples) {
  constexpr double kRounding = 1e-9;  // a layer that is only moved has steps of one pixel
  const Jacobian& j = layer_per_pixel;
  return std::max(reach(j.xx, j.xy), reach(j.yx, j.yy)) <= samples * (1.0 + kRounding);
}

int samplesForSteps(double layer_pixels_per_output_pixel) {
  int samples = 1;
  while (samples < kMostSamples && samples < layer_pixels_per_output_pixel) {
    samples *= 2;
  }
  return samples;
}

}  // namespace vantorel::host
