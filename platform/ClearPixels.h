// Making pixels transparent at memory speed. A transparent pixel is all zero bytes, also in float.
#pragma once

#include <cstddef>
#include <cstdint>

// How the cleared bytes are stored.
enum class StorePolicy {
  Cached,      // ordinary stores: for worlds that fit into the processor's caches
  NonTemporal  // stores that bypass the caches: for larger worlds, where cleared pixels would evict the input
};

// The policy for a world of that size.
StorePolicy storePolicyFor(std::uint64_t world_bytes);

// Zeroes `count` bytes at `out`. With either policy, a thread that synchronises with this one afterwards sees the
// zeros.
void clearBytes(void* out, std::size_t count, StorePolicy policy);
