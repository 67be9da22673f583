#include "platform/ClearPixels.h"

#include <cstring>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace {

// About the size of a core's own cache: a larger world does not stay cached until the next frame.
constexpr std::uint64_t kCachedWorldBytes = std::uint64_t{2} << 20;

#if defined(__x86_64__)

constexpr std::size_t kCacheLine = 64;
// Below this the fence costs more than bypassing the caches gains.
constexpr std::size_t kLeastNonTemporalBytes = 1024;

void clearPastCaches(std::byte* out, std::size_t count) {
  const std::size_t head = (kCacheLine - reinterpret_cast<std::uintptr_t>(out) % kCacheLine) % kCacheLine;
  std::memset(out, 0, head);
  out += head;
  count -= head;
  const __m128i zero = _mm_setzero_si128();
  for (; count >= kCacheLine; count -= kCacheLine, out += kCacheLine) {
    __m128i* const line = reinterpret_cast<__m128i*>(out);
    _mm_stream_si128(line, zero);
    _mm_stream_si128(line + 1, zero);
    _mm_stream_si128(line + 2, zero);
    _mm_stream_si128(line + 3, zero);
  }
  std::memset(out, 0, count);
  // Non-temporal stores are not ordered with later ones, such as those that report the row as done to other threads.
  _mm_sfence();
}

#endif

}  // namespace

StorePolicy storePolicyFor(std::uint64_t world_bytes) {
  return world_bytes > kCachedWorldBytes ? StorePolicy::NonTemporal : StorePolicy::Cached;
}

void clearBytes(void* out, std::size_t count, [[maybe_unused]] StorePolicy policy) {
  // memset may use a store with an empty mask, which still waits for the memory.
  if (count == 0) {
    return;
  }
#if defined(__x86_64__)
  if (policy == StorePolicy::NonTemporal && count >= kLeastNonTemporalBytes) {
    clearPastCaches(static_cast<std::byte*>(out), count);
    return;
  }
#endif
  std::memset(out, 0, count);
}
