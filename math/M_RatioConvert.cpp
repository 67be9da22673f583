// Converting rational numbers to lowest terms, to other denominators and from floating point.
#include <cmath>

#include "M_Integer.h"
#include "M_Ratapprox.h"
#include "M_Ratio.h"
#include "M_stuff.h"

namespace {

constexpr std::int32_t kLargestTerm = 1 << 30;
constexpr std::uint32_t kSignBit = 0x80000000u;

bool fitsInt32(double x) {
  return x >= -2147483648.0 && x <= 2147483647.0;
}

// The numerator of num / den over new_den, before rounding to an integer.
double numeratorOver(std::uint32_t new_den, std::int32_t num, std::uint32_t den) {
  return num * (static_cast<double>(new_den) / den);
}

void setFlag(bool* flag, bool value) {
  if (flag != nullptr) {
    *flag = value;
  }
}

}  // namespace

std::int32_t M_ReduceRatio(const M_Ratio* in, M_Ratio* out, bool* reduced) {
  setFlag(reduced, false);
  if (in == nullptr || out == nullptr) {
    return 0;
  }
  std::uint32_t gcd = 1;
  M_UnsignedGCD(Mp_Magnitude(in->num), in->den, &gcd);
  if (gcd == 1 || gcd >= kSignBit) {
    *out = *in;
  } else {
    *out = {in->num / static_cast<std::int32_t>(gcd), in->den / gcd};
  }
  setFlag(reduced, gcd != 1);
  return 0;
}

std::int32_t M_ConvRatio(const M_Ratio* in, std::uint32_t new_den, M_Ratio* out, bool* exact, bool* overflow) {
  if (in == nullptr || out == nullptr) {
    return M_ErrNullPointer;
  }
  const M_Ratio from = *in;
  if (from.den == 0 || new_den == 0) {
    *out = {0, 0};
    setFlag(overflow, false);
    return M_ErrZeroDenominator;
  }
  if (from.den == new_den) {
    *out = from;
    setFlag(exact, true);
    return 0;
  }
  const double numerator = numeratorOver(new_den, from.num, from.den);
  const bool fits = fitsInt32(numerator);
  *out = fits ? M_Ratio{M_RoundDouble(numerator), new_den} : M_Ratio{0, 0};
  setFlag(exact, fits && static_cast<double>(new_den) * from.num == static_cast<double>(from.den) * out->num);
  setFlag(overflow, !fits);
  return 0;
}

std::int32_t M_ShortConvRatio(std::int32_t num, std::uint32_t den, std::uint32_t new_den, std::int32_t* out_num,
                              bool* overflow) {
  if (out_num == nullptr) {
    return M_ErrNullPointer;
  }
  *out_num = 0;
  setFlag(overflow, false);
  if (den == 0 || new_den == 0) {
    return M_ErrZeroDenominator;
  }
  if (den == new_den) {
    *out_num = num;
    return 0;
  }
  const double numerator = numeratorOver(new_den, num, den);
  if (fitsInt32(numerator)) {
    *out_num = M_RoundDouble(numerator);
    return 0;
  }
  setFlag(overflow, true);
  return overflow != nullptr ? 0 : M_ErrNullPointer;
}

std::int32_t M_FpLong2Ratio(double value, M_Ratio* out, bool* overflow) {
  if (out == nullptr || overflow == nullptr) {
    return M_ErrNullPointer;
  }
  int exponent = 0;
  std::frexp(value, &exponent);
  *overflow = !std::isfinite(value) || exponent > 31;
  if (*overflow) {
    *out = {0, 0};
    return 0;
  }
  if (value == 0.0 || exponent < -31) {
    *out = {0, 1};
  } else {
    Mp_Double2RatioSmart(out, value);
  }
  return M_ReduceRatio(out, out, nullptr);
}

std::int32_t Mp_Double2RatioSmart(M_Ratio* out, double value) {
  *out = ratapprox(kLargestTerm, static_cast<float>(value));
  return 0;
}
