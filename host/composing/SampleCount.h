// How many samples a pixel needs, per axis, for the effect's own averaging to come near the true one.
#pragma once

#include <array>

#include "host/geometry/Homography.h"

namespace vantorel::host {

// Per axis, rising; FrameOptions offers the powers of two among them.
inline constexpr std::array<int, 6> kSampleCounts{1, 2, 3, 4, 6, 8};
inline constexpr int kMostSamples = kSampleCounts.back();

// How far the filter of n by n samples is from the true one.
//
// The true filter of a pixel, on the layer, is the mean over the pixel's image (a parallelogram with the sides J e_x
// and J e_y) of the layer's bilinear interpolation (a tent of one pixel's half-width); its variance is (J J^T + 2 I)
// / 12. The effect takes the mean of whole layer pixels over an upright box around that parallelogram's corner
// distances, held between 1 and 16 pixels a side; of n by n such samples the variance is (diag(b_x^2 + 1, b_y^2 + 1) +
// (1 - 1 / n^2) J J^T) / 12, with b the sides for a step of 1 / n pixel. The error is the difference of the two,
// relative to the true variance, in the direction where it is worst: positive for a picture that is too soft, negative
// for one that is too sharp and begins to alias.
struct FilterError {
  double soft = 0.0;   // 0 and up
  double sharp = 0.0;  // 0 to 1
};

// `layer_per_pixel` is the derivative J of the map from the output to the layer.
FilterError filterError(const Jacobian& layer_per_pixel, int samples);

// The fewest samples whose error stays within the limits below, and whose boxes leave no gaps where they are of the
// largest size; kMostSamples where none does.
int samplesForFilter(const Jacobian& layer_per_pixel);

// Whether the effect's box is one layer pixel a side, the smallest, for n by n samples. Standard quality always takes
// that, and so gives the same picture as high quality there, in half the time.
bool hasSmallestBox(const Jacobian& layer_per_pixel, int samples);

// The limits, found by measuring pictures against the truth: with them zone plate and bars reach 37 dB. More than one
// sample may be sharper for the same error, since their mean takes away again what each of them lets through.
constexpr double kSoftLimit = 0.15;
constexpr double kSharpLimitOfOne = 0.14;
constexpr double kSharpLimit = 0.2;

// The fewest samples with which no step from sample to sample is longer than a layer pixel, along either axis of the
// layer: what linear interpolation without averaging needs. kMostSamples where none is enough.
int samplesForSteps(double layer_pixels_per_output_pixel);

}  // namespace vantorel::host
