// The box of an area sample on the grid of a world's pixels.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/frames/WorldRow.h"
#include "support/FixedUnits.h"
#include "support/PF_HostRecords.h"

// Always inlined: files compiled for different instruction sets use these functions, and a copy compiled for one set
// must not serve the others.
#define VANTOREL_INLINE [[gnu::always_inline]] inline

namespace vantorel::host {

inline constexpr std::int64_t kOnePixel = kFixedOne;
inline constexpr std::int32_t kHalfPixel = kFixedHalf;

// One axis of the box, in 1/65536 pixel, pixel k covering [k * 65536, (k + 1) * 65536).
struct SampleSpan {
  std::int64_t begin;
  std::int64_t end;

  VANTOREL_INLINE constexpr SampleSpan(std::int32_t centre, std::int32_t radius)
      : begin(std::int64_t{centre} - radius + kHalfPixel), end(std::int64_t{centre} + radius + kHalfPixel) {}

  VANTOREL_INLINE constexpr std::int64_t length() const { return end - begin; }

  // The first pixel that the span meets, and one past the last, within [0, size).
  VANTOREL_INLINE constexpr std::int64_t firstPixel() const { return begin < 0 ? 0 : begin >> 16; }
  VANTOREL_INLINE constexpr std::int64_t endPixel(std::int32_t size) const {
    const std::int64_t pixel = (end + 65535) >> 16;
    return pixel < size ? pixel : size;
  }

  VANTOREL_INLINE constexpr bool inOnePixel() const { return (begin >> 16) == ((end - 1) >> 16); }

  // The length that the span shares with a pixel: 1 to 65536 for the pixels that it meets.
  VANTOREL_INLINE constexpr std::int64_t overlap(std::int64_t pixel) const {
    const std::int64_t left = pixel << 16;
    const std::int64_t right = left + kOnePixel;
    return (end < right ? end : right) - (begin > left ? begin : left);
  }
};

VANTOREL_INLINE bool isSampleable(const PF_SampleParams* params) {
  return params != nullptr && params->x_radius > 0 && params->y_radius > 0 && params->source != nullptr &&
         params->source->data != nullptr;
}

}  // namespace vantorel::host
