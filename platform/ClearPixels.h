// Making pixels transparent at the speed of memory. All channels zero is all bytes zero, also for floats.
#pragma once

#include <cstddef>
#include <cstdint>

// How the cleared bytes are stored.
enum class StorePolicy {
  Cached,      // ordinary stores: for worlds that fit into the processor's caches
  NonTemporal  // stores that bypass the caches: for larger worlds, where cleared pixels would evict the input
};

// The policy for a world of so many bytes.
StorePolicy storePolicyFor(std::uint64_t world_bytes);

// Zeroes `count` bytes from `out` on. With either policy, a thread that synchronises with this one afterwards sees
// them.
void clearBytes(void* out, std::size_t count, StorePolicy policy);
