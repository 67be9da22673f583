// How many samples per axis a pixel needs for the effect's own averaging to be close to the ideal filter.
#pragma once

#include <array>

#include "host/geometry/Homography.h"

namespace vantorel::host {

// Per axis, ascending; FrameOptions accepts the powers of two among them.
inline constexpr std::array<int, 6> kSampleCounts{1, 2, 3, 4, 6, 8};
inline constexpr int kMostSamples = kSampleCounts.back();

// How far the filter of n by n samples is from the ideal filter.
//
// A pixel's ideal filter, on the layer, is the mean of the bilinearly interpolated layer (a tent of one pixel's
// half-width) over the pixel's image, a parallelogram with the sides J e_x and J e_y. Its variance is (J J^T + 2 I) /
// 12. The effect takes the mean of layer pixels over an axis-aligned box whose sides are the parallelogram's largest
// corner distances, clamped to 1 to 16 pixels. The variance of n by n such samples is (diag(b_x^2 + 1, b_y^2 + 1) + (1
// - 1 / n^2) J J^T) / 12, where b are the sides for a step of 1 / n pixel. The error is the difference of the two
// variances, relative to the ideal one, in the direction where it is largest: positive if the picture is too soft,
// negative if it is too sharp and begins to alias.
struct FilterError {
  double soft = 0.0;   // 0 and up
  double sharp = 0.0;  // 0 to 1
};

// `layer_per_pixel` is the derivative J of the map from the output to the layer.
FilterError filterError(const Jacobian& layer_per_pixel, int samples);

// The smallest count whose error is within the limits below and whose boxes, which have a maximum size, leave no gaps;
// kMostSamples if there is none.
int samplesForFilter(const Jacobian& layer_per_pixel);

// Whether the effect's box has the smallest size, one layer pixel a side, with n by n samples. Standard quality always
// uses this box, so it gives the same picture as high quality there, in half the time.
bool hasSmallestBox(const Jacobian& layer_per_pixel, int samples);

// The limits, found by comparing pictures with exact ones: with them, zone plate and bars reach 37 dB. The limit on
// sharpness is higher with more than one sample, because their mean suppresses part of the aliasing of each one.
constexpr double kSoftLimit = 0.15;
constexpr double kSharpLimitOfOne = 0.14;
constexpr double kSharpLimit = 0.2;

// The smallest power of two for which samples are at most a layer pixel apart, along either axis of the layer: what
// linear interpolation without averaging needs. kMostSamples if that is not enough.
int samplesForSteps(double layer_pixels_per_output_pixel);

}  // namespace vantorel::host
