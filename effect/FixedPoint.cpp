#include "effect/FixedPoint.h"

#include "effect/Int32Arithmetic.h"
#include "platform/FixDiv.h"

std::int32_t FixedDiv(std::int32_t a, std::int32_t b) {
  return FixDiv(a, b);
}

std::int32_t KZ_FixMulDiv(std::int32_t a, std::int32_t b, std::int32_t c) {
  const float fa = static_cast<float>(a / 65536.0);
  const float fb = static_cast<float>(b / 65536.0);
  const float fc = static_cast<float>(c / 65536.0);
  const float product = fa * fb;
  const float quotient = product / fc;
  return int32FromDouble(static_cast<double>(quotient) * 65536.0);
}
