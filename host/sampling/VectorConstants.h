// The constants of the small boxes' vectors, for loading. They are defined in another file, where the compiler cannot
// see their values: it would build the vectors from immediate operands instead, a sixth of a sample's instructions.
#pragma once

#include <cstdint>

namespace vantorel::host {

struct VectorConstants {
  alignas(64) std::int64_t pair_lanes[8];   // indices: lane 1 of one vector four times, then that of another
  alignas(32) std::int64_t rounding[4];     // half of 2^32
  alignas(16) std::int64_t one[2];          // a pixel
  alignas(16) std::int64_t two[2];          // two pixels
  alignas(16) std::int64_t three[2];        // three pixels
  alignas(16) std::int64_t half[2];         // half a pixel
  alignas(16) std::int64_t fraction[2];     // the bits of a position in its pixel
  alignas(16) std::int32_t narrow_half[4];  // the same two in lanes of 32 bits
  alignas(16) std::int32_t narrow_fraction[4];
};

[[gnu::visibility("hidden")]] extern const VectorConstants kVectorConstants;

}  // namespace vantorel::host
