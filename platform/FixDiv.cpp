#include "FixDiv.h"

#include <limits>

std::int32_t FixDiv(std::int32_t dividend, std::int32_t divisor) {
  constexpr std::int64_t kMax = std::numeric_limits<std::int32_t>::max();
  constexpr std::int64_t kMin = std::numeric_limits<std::int32_t>::min();
  if (divisor == 0) {
    return static_cast<std::int32_t>(dividend < 0 ? kMin : kMax);
  }
  const std::int64_t scaled = std::int64_t{dividend} * 65536;
  const std::int64_t half = divisor < 0 ? -(std::int64_t{divisor} / 2) : std::int64_t{divisor} / 2;
  const std::int64_t quotient = (dividend < 0 ? scaled - half : scaled + half) / divisor;
  return static_cast<std::int32_t>(quotient > kMax ? kMax : quotient < kMin ? kMin : quotient);
}
