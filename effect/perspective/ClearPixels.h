// Making pixels transparent at the speed of memory. All channels zero is all bytes zero, also for floats.
#pragma once

#include <cstddef>
#include <cstdint>

// How the pixels of a world are cleared.
enum class ClearingWay {
  Cached,   // as any other store: for worlds that the processor's caches hold
  Streamed  // past the caches: for larger worlds, whose cleared pixels would only drive the input out of them
};

// The way for a world of so many bytes.
ClearingWay clearingWayFor(std::uint64_t world_bytes);

// Other threads see the bytes once this one has told them in the usual ways that it is done.
void clearBytes(void* out, std::size_t count, ClearingWay way);
