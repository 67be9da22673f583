// Sums, differences and products of rational numbers.
#include "M_Ratio.h"

#include <limits>

#include "M_Integer.h"
#include "M_stuff.h"

namespace {

// What the caller's status argument asks for. If `byte` is null, an overflow is reported as an error code.
struct StatusRequest {
  unsigned char* byte;
  bool approximation_allowed;
};

// Reads the status argument, and clears the byte if there is one.
StatusRequest readStatus(unsigned char* status) {
  if (status == nullptr) {
    return {nullptr, false};
  }
  if (status == M_RatioApproximateUnreported()) {
    return {nullptr, true};
  }
  const bool allowed = (*status & M_RatioAllowApproximation) != 0;
  *status = M_RatioExact;
  return {status, allowed};
}

// The error code of a result of this kind; a failed one becomes 0/0.
std::int32_t report(M_RatioKind kind, const StatusRequest& request, M_Ratio* out) {
  if (kind == M_RatioOverflow) {
    *out = {0, 0};
  }
  if (request.byte != nullptr) {
    *request.byte = kind;
    return 0;
  }
  return kind == M_RatioOverflow ? M_ErrRatioOverflow : 0;
}

double toDouble(const M_Ratio& ratio) {
  return static_cast<double>(ratio.num) / ratio.den;
}

// Returns whether the terms had a common divisor.
bool reduce(M_Ratio* ratio) {
  bool reduced = false;
  M_ReduceRatio(ratio, ratio, &reduced);
  return reduced;
}

// Each of these returns false, and leaves the result unchanged, if the result may not fit.

bool multiply(std::uint32_t a, std::uint32_t b, std::uint32_t* product) {
  if (M_UMulWouldOverflow(a, b)) {
    return false;
  }
  *product = a * b;
  return true;
}

bool multiply(std::int32_t a, std::int32_t b, std::int32_t* product) {
  if (M_MulWouldOverflow(a, b)) {
    return false;
  }
  *product = a * b;
  return true;
}

bool add(std::int32_t a, std::int32_t b, std::int32_t* sum) {
  if (M_AddWouldOverflow(a, b)) {
    return false;
  }
  *sum = a + b;
  return true;
}

bool negate(std::int32_t* number) {
  if (*number == std::numeric_limits<std::int32_t>::min()) {
    return false;
  }
  *number = -*number;
  return true;
}

bool addOverCommonDenominator(const M_Ratio& a, const M_Ratio& b, M_Ratio* out) {
  if (a.den == b.den) {
    std::int32_t sum = 0;
    if (!add(a.num, b.num, &sum)) {
      return false;
    }
    *out = {sum, a.den};
    return true;
  }
  std::uint32_t gcd = 1;
  M_UnsignedGCD(a.den, b.den, &gcd);
  const std::uint32_t factor_a = b.den / gcd;
  const std::uint32_t factor_b = a.den / gcd;
  std::uint32_t den = 0;
  std::int32_t term_a = 0;
  std::int32_t term_b = 0;
  std::int32_t sum = 0;
  // A factor of 2^31 or more fails the first step, so the factors are positive as signed numbers.
  if (!multiply(factor_a, a.den, &den) || !multiply(a.num, static_cast<std::int32_t>(factor_a), &term_a) ||
      !multiply(b.num, static_cast<std::int32_t>(factor_b), &term_b) || !add(term_a, term_b, &sum)) {
    return false;
  }
  *out = {sum, den};
  return true;
}

bool tryCalc(const M_Ratio& a, M_Ratio b, bool subtract, M_Ratio* out) {
  if (a.num != 0 && b.num == 0) {
    *out = a;
    return true;
  }
  if (subtract && !negate(&b.num)) {
    return false;
  }
  if (a.num == 0) {
    *out = b;
    return true;
  }
  return addOverCommonDenominator(a, b, out);
}

bool tryMultiply(const M_Ratio& a, const M_Ratio& b, M_Ratio* out) {
  M_Ratio product = {0, 0};
  if (!multiply(a.den, b.den, &product.den) || !multiply(a.num, b.num, &product.num)) {
    return false;
  }
  *out = product;
  return true;
}

bool calcExactly(M_Ratio a, M_Ratio b, bool subtract, M_Ratio* out) {
  if (tryCalc(a, b, subtract, out)) {
    return true;
  }
  const bool a_reduced = reduce(&a);
  const bool b_reduced = reduce(&b);
  return (a_reduced || b_reduced) && tryCalc(a, b, subtract, out);
}

bool multiplyExactly(M_Ratio a, M_Ratio b, M_Ratio* out) {
  if (tryMultiply(a, b, out)) {
    return true;
  }
  bool reduced = reduce(&a);
  reduced |= reduce(&b);
  // a/b * c/d = c/b * a/d
  const std::int32_t numerator = a.num;
  a.num = b.num;
  b.num = numerator;
  reduced |= reduce(&a);
  reduced |= reduce(&b);
  return reduced && tryMultiply(a, b, out);
}

// Converts `value`, the result in floating point, to a ratio, if approximation is allowed and succeeds.
M_RatioKind approximate(double value, const StatusRequest& request, M_Ratio* out) {
  if (!request.approximation_allowed) {
    return M_RatioOverflow;
  }
  bool overflow = false;
  const std::int32_t err = M_FpLong2Ratio(value, out, &overflow);
  return err != 0 || overflow ? M_RatioOverflow : M_RatioApproximate;
}

}  // namespace

std::int32_t M_AddRatio(const M_Ratio* a, const M_Ratio* b, M_Ratio* out, unsigned char* status) {
  return Mp_CalcRatio(a, b, false, out, status);
}

std::int32_t M_SubRatio(const M_Ratio* a, const M_Ratio* b, M_Ratio* out, unsigned char* status) {
  return Mp_CalcRatio(a, b, true, out, status);
}

std::int32_t Mp_CalcRatio(const M_Ratio* a, const M_Ratio* b, bool subtract, M_Ratio* out, unsigned char* status) {
  if (a == nullptr || b == nullptr || out == nullptr) {
    return M_ErrNullPointer;
  }
  const StatusRequest request = readStatus(status);
  if (a->den == 0 || b->den == 0) {
    *out = {0, 0};
    return M_ErrZeroDenominator;
  }
  if (calcExactly(*a, *b, subtract, out)) {
    return report(M_RatioExact, request, out);
  }
  const double value = subtract ? toDouble(*a) - toDouble(*b) : toDouble(*a) + toDouble(*b);
  return report(approximate(value, request, out), request, out);
}

std::int32_t M_MulRatio(const M_Ratio* a, const M_Ratio* b, M_Ratio* out, unsigned char* status) {
  if (a == nullptr || b == nullptr || out == nullptr) {
    return M_ErrNullPointer;
  }
  const StatusRequest request = readStatus(status);
  if (a->den == 0 || b->den == 0) {
    *out = {0, 0};
    return M_ErrNullPointer;
  }
  if (multiplyExactly(*a, *b, out)) {
    return report(M_RatioExact, request, out);
  }
  return report(approximate(toDouble(*a) * toDouble(*b), request, out), request, out);
}
