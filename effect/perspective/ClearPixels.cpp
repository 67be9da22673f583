#include "effect/perspective/ClearPixels.h"

#include <cstring>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace {

// About what one processor core has to itself.
constexpr std::uint64_t kCachedWorldBytes = std::uint64_t{2} << 20;

#if defined(__x86_64__)

constexpr std::size_t kCacheLine = 64;
// Below this the fence costs more than is gained.
constexpr std::size_t kStreamedBytes = 1024;

void streamZeros(std::byte* out, std::size_t count) {
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
  // Streamed stores wait for no later ones, among them those that tell of the row's end.
  _mm_sfence();
}

#endif

}  // namespace

ClearingWay clearingWayFor(std::uint64_t world_bytes) {
  return world_bytes > kCachedWorldBytes ? ClearingWay::Streamed : ClearingWay::Cached;
}

void clearBytes(void* out, std::size_t count, ClearingWay way) {
#if defined(__x86_64__)
  if (way == ClearingWay::Streamed && count >= kStreamedBytes) {
    streamZeros(static_cast<std::byte*>(out), count);
    return;
  }
#endif
  static_cast<void>(way);
  std::memset(out, 0, count);
}
