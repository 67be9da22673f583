#include "tests/math/RatioChecks.h"

#include <bit>
#include <boost/multiprecision/cpp_int.hpp>
#include <cmath>
#include <numeric>
#include <sstream>

#include "math/M_Ratapprox.h"

namespace {

using Integer = boost::multiprecision::number<boost::multiprecision::cpp_int_backend<>, boost::multiprecision::et_off>;
using Rational =
    boost::multiprecision::number<boost::multiprecision::cpp_rational_backend, boost::multiprecision::et_off>;
using Calculation = decltype(M_AddRatio);

constexpr M_Ratio kFailed = {0, 0};
constexpr std::int64_t kLimit = std::int64_t{1} << 30;
const Integer kTwoTo31 = Integer(1) << 31;

Rational exactly(const M_Ratio& ratio) {
  return {Integer(ratio.num), Integer(ratio.den)};
}

// The fraction nearest to x with both terms at most `limit`: the better of the two neighbours of x among all such
// fractions, the one with smaller terms if they are equally near.
M_Ratio nearestFraction(std::int64_t limit, const Rational& x) {
  if (limit <= 0) {
    return {0, 1};
  }
  if (x < 0) {
    const M_Ratio positive = nearestFraction(limit, -x);
    return {-positive.num, positive.den};
  }
  const bool inverted = x > 1;
  const Rational y = inverted ? 1 / x : x;
  Integer n = numerator(y), d = denominator(y);
  Integer p0 = 0, q0 = 1, p1 = 1, q1 = 0;
  while (d != 0 && q0 + n / d * q1 <= limit) {
    const Integer a = n / d;
    const Integer p2 = p0 + a * p1, q2 = q0 + a * q1, rest = n - a * d;
    p0 = p1, q0 = q1, p1 = p2, q1 = q2, n = d, d = rest;
  }
  const Integer k = d == 0 ? Integer(0) : (limit - q0) / q1;
  Integer near_n = p1, near_d = q1, far_n = p0 + k * p1, far_d = q0 + k * q1;
  if (inverted) {
    std::swap(near_n, near_d);
    std::swap(far_n, far_d);
  }
  const bool far = near_d == 0 || (far_d != 0 && abs(Rational(far_n, far_d) - x) < abs(Rational(near_n, near_d) - x));
  return {static_cast<std::int32_t>(far ? far_n : near_n), static_cast<std::uint32_t>(far ? far_d : near_d)};
}

M_Ratio fromDouble(double value) {
  if (!(std::abs(value) < 0x1p31)) {
    return kFailed;
  }
  const M_Ratio positive = nearestFraction(kLimit, Rational(std::abs(static_cast<float>(value))));
  return {value < 0 ? -positive.num : positive.num, positive.den};
}

// Whether the calculation in lowest terms comes near enough to 32 bits for an overflow to be expected.
bool needsWideTerms(RatioOperation operation, const M_Ratio& a, const M_Ratio& b) {
  const Rational x = exactly(a), y = exactly(b);
  if (a.den >= kTwoTo31 || b.den >= kTwoTo31) {
    return true;
  }
  if (operation == RatioOperation::kMul) {
    const Rational product = x * y;
    return product == 0 || abs(numerator(product)) >= kLimit || denominator(product) >= kTwoTo31;
  }
  // The least common multiple.
  const Integer common = denominator(x) * denominator(Rational(denominator(x), denominator(y)));
  return common >= kTwoTo31 || abs(numerator(x)) * (common / denominator(x)) >= kLimit ||
         abs(numerator(y)) * (common / denominator(y)) >= kLimit;
}

std::string checkCalculation(RatioOperation operation, const M_Ratio& a, const M_Ratio& b) {
  const bool multiply = operation == RatioOperation::kMul;
  const bool subtract = operation == RatioOperation::kSub;
  Calculation* const calculate = multiply ? M_MulRatio : subtract ? M_SubRatio : M_AddRatio;
  M_Ratio out = {7, 7};
  unsigned char kind = 0xFF;
  const std::int32_t err = calculate(&a, &b, &out, &kind);
  if (a.den == 0 || b.den == 0) {
    const bool right = err == (multiply ? M_ErrNullPointer : M_ErrZeroDenominator) && out == kFailed && kind == 0;
    return right ? "" : "zero denominator";
  }
  if (err != 0) {
    return "error code in spite of a status byte";
  }

  if (kind == M_RatioExact) {
    const Rational x = exactly(a), y = exactly(b);
    const Rational expected = multiply ? x * y : subtract ? x - y : x + y;
    if (out.den == 0 || exactly(out) != expected) {
      return "not exact";
    }
  } else {
    const double x = static_cast<double>(a.num) / a.den, y = static_cast<double>(b.num) / b.den;
    const M_Ratio expected = fromDouble(multiply ? x * y : subtract ? x - y : x + y);
    if (!(out == expected) || kind != (expected == kFailed ? M_RatioOverflow : M_RatioApproximate)) {
      return "wrong approximation";
    }
    if (!needsWideTerms(operation, a, b)) {
      return "approximate without need";
    }
  }

  const M_Ratio strict = kind == M_RatioExact ? out : kFailed;
  M_Ratio other = a;
  if (calculate(&other, &b, &other, nullptr) != (kind == M_RatioExact ? 0 : M_ErrRatioOverflow) || !(other == strict)) {
    return "without status, into the first operand";
  }
  other = b;
  unsigned char forbidding = 0xFD;
  if (calculate(&a, &other, &other, &forbidding) != 0 || forbidding != (kind == M_RatioExact ? 0 : M_RatioOverflow) ||
      !(other == strict)) {
    return "approximation forbidden, into the second operand";
  }
  const std::int32_t unreported = calculate(&a, &b, &other, M_RatioApproximateUnreported());
  return unreported == (kind == M_RatioOverflow ? M_ErrRatioOverflow : 0) && other == out ? "" : "unreported";
}

std::string checkReduce(M_Ratio ratio) {
  const std::int64_t gcd = ratio.den == 0 ? 1 : std::gcd(std::int64_t{ratio.num}, std::int64_t{ratio.den});
  const std::int64_t divisor = gcd >= kTwoTo31 ? 1 : gcd;
  const M_Ratio expected = {static_cast<std::int32_t>(ratio.num / divisor),
                            static_cast<std::uint32_t>(ratio.den / divisor)};
  M_Ratio other = {7, 7};
  bool reduced = gcd == 1;
  M_ReduceRatio(&ratio, &other, nullptr);
  M_ReduceRatio(&ratio, &ratio, &reduced);
  return ratio == expected && other == expected && reduced == (gcd != 1) ? "" : "not in lowest terms";
}

// The conversions are computed in double precision: right to half a unit and a little, and at the limits likewise.
std::string checkConvert(const M_Ratio& in, std::uint32_t new_den) {
  M_Ratio out = in;
  bool exact = false;
  bool overflow = in.den == 0 || in.den != new_den;  // where these are equal, and not 0, it keeps its value
  bool short_overflow = true;
  std::int32_t num = 7;
  const std::int32_t err = M_ConvRatio(&out, new_den, &out, &exact, &overflow);
  const std::int32_t short_err = M_ShortConvRatio(in.num, in.den, new_den, &num, &short_overflow);
  if (err != short_err || num != out.num || overflow != short_overflow) {
    return "short and long form differ";
  }
  if (in.den == 0 || new_den == 0) {
    return err == M_ErrZeroDenominator && out == kFailed && !overflow ? "" : "zero denominator";
  }
  const Rational expected = exactly(in) * new_den;
  const Rational slack = Rational(1, 1 << 20);
  if (overflow) {
    const bool near_or_outside = expected > kTwoTo31 - 1 - slack || expected < slack - kTwoTo31;
    return err == 0 && out == kFailed && !exact && near_or_outside ? "" : "overflow";
  }
  if (err != 0 || out.den != new_den || abs(expected - out.num) > Rational(1, 2) + slack) {
    return "wrong numerator";
  }
  const Rational error = abs(expected - out.num);
  const bool unseen = error * (Integer(1) << 51) < abs(expected);
  return exact ? (error == 0 || unseen ? "" : "said to be exact") : (error == 0 ? "exact, but not said" : "");
}

std::string checkFromDouble(double value) {
  M_Ratio out = {7, 7};
  bool overflow = false;
  const std::int32_t err = M_FpLong2Ratio(value, &out, &overflow);
  const M_Ratio expected = fromDouble(value);
  return err == 0 && out == expected && overflow == (expected == kFailed) ? "" : "not the nearest fraction";
}

std::string checkApproximate(std::int32_t limit, float x) {
  const M_Ratio out = ratapprox(limit, x);
  if (!std::isfinite(x)) {
    const M_Ratio expected = limit <= 0 ? M_Ratio{0, 1} : std::isnan(x) ? kFailed : M_Ratio{x < 0 ? -limit : limit, 1};
    return out == expected ? "" : "not finite";
  }
  return out == nearestFraction(limit, Rational(x)) ? "" : "not the nearest fraction";
}

std::string checkIntegers(const M_Ratio& a, const M_Ratio& b) {
  const std::int64_t product = std::int64_t{a.num} * b.num;
  const std::uint64_t unsigned_product = std::uint64_t{a.den} * b.den;
  const std::int64_t sum = std::int64_t{a.num} + b.num;
  if (M_AddWouldOverflow(a.num, b.num) != (sum != static_cast<std::int32_t>(sum))) {
    return "M_AddWouldOverflow";
  }
  if (!M_MulWouldOverflow(a.num, b.num) && product != static_cast<std::int32_t>(product)) {
    return "M_MulWouldOverflow misses an overflow";
  }
  if (M_MulWouldOverflow(a.num, b.num) && product != 0 && std::abs(product) < kLimit) {
    return "M_MulWouldOverflow warns without need";
  }
  if (!M_UMulWouldOverflow(a.den, b.den) && unsigned_product > 0xFFFFFFFFu) {
    return "M_UMulWouldOverflow misses an overflow";
  }
  if (M_UMulWouldOverflow(a.den, b.den) && unsigned_product != 0 && unsigned_product < (1u << 31)) {
    return "M_UMulWouldOverflow warns without need";
  }
  std::uint32_t gcd = 0;
  M_UnsignedGCD(a.den, b.den, &gcd);
  if (gcd != (b.den == 0 ? 1 : std::gcd(a.den, b.den))) {
    return "M_UnsignedGCD";
  }
  std::uint32_t hi = 0;
  std::uint32_t lo = 0;
  Mul32(a.den, b.den, &hi, &lo);
  if ((std::uint64_t{hi} << 32 | lo) != unsigned_product) {
    return "Mul32";
  }
  return M_LeadingZeros(a.den) == std::countl_zero(a.den) ? "" : "M_LeadingZeros";
}

std::string check(const RatioCase& c) {
  switch (c.operation) {
    case RatioOperation::kReduce:
      return checkReduce(c.a);
    case RatioOperation::kConvert:
      return checkConvert(c.a, c.b.den);
    case RatioOperation::kFromDouble:
      return checkFromDouble(c.value);
    case RatioOperation::kApproximate:
      return checkApproximate(c.a.num, std::bit_cast<float>(c.b.den));
    case RatioOperation::kIntegers:
      return checkIntegers(c.a, c.b);
    default:
      return checkCalculation(c.operation, c.a, c.b);
  }
}

}  // namespace

bool operator==(const M_Ratio& left, const M_Ratio& right) {
  return left.num == right.num && left.den == right.den;
}

std::ostream& operator<<(std::ostream& stream, const M_Ratio& ratio) {
  return stream << ratio.num << '/' << ratio.den;
}

std::string checkRatioCase(const RatioCase& c) {
  std::string wrong = check(c);
  if (wrong.empty()) {
    return wrong;
  }
  std::ostringstream text;
  text << std::hexfloat << wrong << ": operation " << static_cast<int>(c.operation) << ", a " << c.a << ", b " << c.b
       << ", value " << c.value;
  return text.str();
}
