// Where a sampler's positions are measured from, and what it samples beyond the world's edges.
#pragma once

#include <cstdint>

#include "host/sampling/SampleBox.h"
#include "support/PF_HostRecords.h"

namespace vantorel::host {

enum class SampleSpace {
  Centres,          // a whole number is a pixel's centre; everything outside the world is transparent
  Outline,          // pixel k covers [k, k + 1): half a pixel is subtracted from every position
  OutlineExtended,  // the same, but boxes are clipped to the world; those outside take the nearest border pixels
};
inline constexpr int kSampleSpaces = 3;

// Converts a position to one measured from pixel centres; saturates at the lowest number.
template <SampleSpace kSpace>
VANTOREL_INLINE constexpr std::int32_t fromCentres(std::int32_t position) {
  constexpr std::int32_t kLowest = -2147483647 - 1;
  if constexpr (kSpace == SampleSpace::Centres) {
    return position;
  } else {
    return position < kLowest + kHalfPixel ? kLowest : position - kHalfPixel;
  }
}

// Whether a sampling box is so far outside the layer's [0, size) pixels along one axis that the layer cannot show in
// the output pixel. How far the pixel's footprint extends from its centre follows from the box's radius, which is half
// the footprint's extent, except in two cases. A radius of 8 pixels is the upper limit and gives no bound. At standard
// quality the radius is always half a pixel; a footprint of up to 17 pixels to each side is assumed then, so edge
// pixels of a layer that is shrunk more than about 24 times can lose their colour.
VANTOREL_INLINE bool liesOutOfReach(std::int32_t centre, std::int32_t radius, std::int32_t size) {
  constexpr std::int32_t kLargestRadius = 8 * kFixedOne;
  const std::int64_t reach = radius > kOnePixel / 2 ? 3 * std::int64_t{radius} + kOnePixel : 17 * kOnePixel;
  const std::int64_t position = std::int64_t{centre} + kOnePixel / 2;
  return radius < kLargestRadius && (position < -reach || position > size * kOnePixel + reach);
}

// Clips one axis of a box to [0, size) pixels, with centre and radius in 1/65536 pixel and measured from pixel centres.
// An odd length is extended by one unit, so that centre and radius are whole numbers. A box outside the range becomes
// the nearest pixel.
VANTOREL_INLINE void cutToWorld(std::int32_t* centre, std::int32_t* radius, std::int32_t size) {
  const std::int64_t world_end = size * kOnePixel;
  const SampleSpan span(*centre, *radius);
  if (span.begin >= 0 && span.end <= world_end) {
    return;
  }
  std::int64_t begin = span.begin > 0 ? span.begin : 0;
  std::int64_t end = span.end < world_end ? span.end : world_end;
  if (end - begin < 2) {
    begin = span.end < 2 ? 0 : world_end - kOnePixel;
    end = begin + kOnePixel;
  }
  if (((end - begin) & 1) != 0) {
    begin == 0 ? ++end : --begin;
  }
  *centre = static_cast<std::int32_t>((begin + end - kOnePixel) / 2);
  *radius = static_cast<std::int32_t>((end - begin) / 2);
}

}  // namespace vantorel::host
