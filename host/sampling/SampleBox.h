// The box of an area sample on a world's pixel grid.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/frames/WorldRow.h"
#include "support/FixedUnits.h"
#include "support/PF_HostRecords.h"

// Always inlined, since these functions are used in files compiled for different instruction sets: the linker keeps one
// copy of an inline function, which may need instructions that the processor lacks.
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

  // The first pixel that the span overlaps, and one past the last, within [0, size).
  VANTOREL_INLINE constexpr std::int64_t firstPixel() const { return begin < 0 ? 0 : begin >> 16; }
  VANTOREL_INLINE constexpr std::int64_t endPixel(std::int32_t size) const {
    const std::int64_t pixel = (end + 65535) >> 16;
    return pixel < size ? pixel : size;
  }

  VANTOREL_INLINE constexpr bool inOnePixel() const { return (begin >> 16) == ((end - 1) >> 16); }

  // The length of the span's overlap with a pixel: 1 to 65536 for the pixels that it overlaps.
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
