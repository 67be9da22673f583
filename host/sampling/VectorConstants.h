// Vector constants of the small boxes, to be loaded from memory. They are defined in a separate file so that the
// compiler does not see their values: it would otherwise build the vectors from immediate operands, which takes a sixth
// of a sample's instructions.
#pragma once

#include <cstdint>

namespace vantorel::host {

struct VectorConstants {
  alignas(64) std::int64_t pair_lanes[8];   // indices: lane 1 of one vector four times, then lane 1 of another
  alignas(32) std::int64_t rounding[4];     // half of 2^32
  alignas(16) std::int64_t one[2];          // a pixel
  alignas(16) std::int64_t two[2];          // two pixels
  alignas(16) std::int64_t three[2];        // three pixels
  alignas(16) std::int64_t half[2];         // half a pixel
  alignas(16) std::int64_t fraction[2];     // mask for a position's fraction within its pixel
  alignas(16) std::int32_t narrow_half[4];  // the same two in 32-bit lanes
  alignas(16) std::int32_t narrow_fraction[4];
};

[[gnu::visibility("hidden")]] extern const VectorConstants kVectorConstants;

}  // namespace vantorel::host
