// How a sampler's positions are counted, and what it finds beyond the world's edges.
#pragma once

#include <cstdint>

#include "host/sampling/SampleBox.h"
#include "support/PF_HostRecords.h"

namespace vantorel::host {

enum class SampleSpace {
  Centres,          // a whole number is a pixel's centre; outside of the world everything is transparent
  Outline,          // pixel k covers [k, k + 1): half a pixel is taken from every position
  OutlineExtended,  // the same, and a box is cut to the world; one wholly outside takes the nearest pixels of the
                    // border
};
inline constexpr int kSampleSpaces = 3;

// A position counted from pixel centres; the lowest stays the lowest.
template <SampleSpace kSpace>
VANTOREL_INLINE constexpr std::int32_t fromCentres(std::int32_t position) {
  constexpr std::int32_t kLowest = -2147483647 - 1;
  if constexpr (kSpace == SampleSpace::Centres) {
    return position;
  } else {
    return position < kLowest + kHalfPixel ? kLowest : position - kHalfPixel;
  }
}

// Whether a box lies so far outside of [0, size) pixels along one axis that no part of the layer can show in its pixel.
// A pixel's centre is at most half its image away from what shows in it, an image whose size the radius gives: half of
// its extent, but at most 8 pixels, which tells nothing, and always half a pixel at standard quality, where what is
// shrunk by more than about 24 times can lose its edge pixels' colour.
VANTOREL_INLINE bool liesOutOfReach(std::int32_t centre, std::int32_t radius, std::int32_t size) {
  constexpr std::int32_t kLargestRadius = 8 * kFixedOne;
  const std::int64_t reach = radius > kOnePixel / 2 ? 3 * std::int64_t{radius} + kOnePixel : 17 * kOnePixel;
  const std::int64_t position = std::int64_t{centre} + kOnePixel / 2;
  return radius < kLargestRadius && (position < -reach || position > size * kOnePixel + reach);
}

// Cuts one axis of a box to [0, size) pixels, both in 1/65536 pixel from pixel centres: by an odd length of up to one
// unit more than that, so that centre and radius stay whole numbers.
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
