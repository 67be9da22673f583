#include "M_Integer.h"

#include <cmath>

#include "Int32FromDouble.h"
#include "M_stuff.h"

const unsigned char Mp_G_lead_zeros[16] = {4, 3, 2, 2, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0};

std::int32_t M_RoundDouble(double x) {
  const double raised = x + 0.5;
  if (x > 0.0) {
    return int32FromDouble(raised);
  }
  const bool half = raised == std::floor(raised);
  return int32FromDouble(half ? x : x - 0.5);
}

std::int32_t M_UnsignedGCD(std::uint32_t a, std::uint32_t b, std::uint32_t* gcd) {
  if (gcd == nullptr) {
    return M_ErrNullPointer;
  }
  if (b == 0) {
    a = 1;
  }
  while (b != 0) {
    const std::uint32_t remainder = a % b;
    a = b;
    b = remainder;
  }
  *gcd = a;
  return 0;
}

std::int16_t M_LeadingZeros(std::uint32_t x) {
  int zeros = 0;
  for (int bits = 16; bits >= 4; bits /= 2) {
    if (x >> (32 - bits) == 0) {
      zeros += bits;
      x <<= bits;
    }
  }
  return static_cast<std::int16_t>(zeros + Mp_G_lead_zeros[x >> 28]);
}

bool M_AddWouldOverflow(std::int32_t a, std::int32_t b) {
  if ((a < 0) != (b < 0)) {
    return false;
  }
  const auto wrapped_sum = static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
  return (wrapped_sum < 0) != (a < 0);
}

// A number of n bits times one of m bits has at most n + m bits, of which a signed result has 31.
bool M_MulWouldOverflow(std::int32_t a, std::int32_t b) {
  return M_LeadingZeros(Mp_Magnitude(a)) + M_LeadingZeros(Mp_Magnitude(b)) <= 32;
}

bool M_UMulWouldOverflow(std::uint32_t a, std::uint32_t b) {
  return M_LeadingZeros(a) + M_LeadingZeros(b) <= 31;
}
