#include "effect/FixedPoint.h"

#include "math/Int32FromDouble.h"
#include "platform/FixDiv.h"

std::int32_t FixedDiv(std::int32_t a, std::int32_t b) {
  return FixDiv(a, b);
}

std::int32_t KZ_FixMulDiv(std::int32_t a, std::int32_t b, std::int32_t c) {
  const auto rounded = [](std::int32_t value) { return static_cast<float>(doubleFromFixed(value)); };
  const float product = rounded(a) * rounded(b);
  const float quotient = product / rounded(c);
  return int32FromDouble(static_cast<double>(quotient) * kFixedOne);
}
