// Every rational operation against exact arithmetic, on random and on extreme cases. The environment variable
// VANTOREL_MATH_CASES gives the number of random cases for each operation.
#include <gtest/gtest.h>

#include <bit>
#include <cstdlib>
#include <random>
#include <vector>

#include "tests/math/RatioChecks.h"

namespace {

int caseCount() {
  const char* const text = std::getenv("VANTOREL_MATH_CASES");
  return text != nullptr ? std::atoi(text) : 20000;
}

// Numbers of every length, half of them next to a power of two.
class Numbers {
 public:
  std::uint32_t next() {
    const int length = static_cast<int>(random_() % 33);
    const std::uint32_t mask = length == 0 ? 0 : ~0u >> (32 - length);
    return random_() % 2 == 0 ? random_() & mask : mask + random_() % 5 - 2;
  }

  // Terms with common divisors, now and then.
  M_Ratio ratio() {
    const std::uint32_t common = random_() % 4 == 0 ? next() % 1000 + 1 : 1;
    const std::uint32_t num = next() * common;
    return {static_cast<std::int32_t>(random_() % 2 == 0 ? num : 0u - num), next() * common};
  }

  // Half of them of the size that ratios usually have, half of them any bits.
  double real() {
    const std::uint64_t bits = std::uint64_t{random_()} << 32 | random_();
    const int exponent = static_cast<int>(random_() % 72) - 36;
    return random_() % 2 == 0 ? std::bit_cast<double>(bits)
                              : std::ldexp(static_cast<double>(static_cast<std::int64_t>(bits)), exponent - 63);
  }

 private:
  std::mt19937 random_{20240117};
};

class RatioReference : public testing::TestWithParam<int> {};

TEST_P(RatioReference, RandomCases) {
  Numbers numbers;
  for (int i = 0; i < caseCount(); ++i) {
    RatioCase c = {RatioOperation{static_cast<unsigned char>(GetParam())}, numbers.ratio(), numbers.ratio(),
                   numbers.real()};
    if (c.operation == RatioOperation::kApproximate) {
      c.b.den = std::bit_cast<std::uint32_t>(static_cast<float>(numbers.real()));
    }
    ASSERT_EQ(checkRatioCase(c), "");
  }
}

TEST_P(RatioReference, ExtremeTerms) {
  std::vector<std::uint32_t> terms;
  for (const std::uint32_t power : {1u, 1u << 15, 1u << 16, 1u << 30, 1u << 31}) {
    terms.insert(terms.end(), {power - 1, power, power + 1, 0u - power});
  }
  for (const std::uint32_t num_a : terms) {
    for (const std::uint32_t den_a : terms) {
      for (const std::uint32_t num_b : terms) {
        for (const std::uint32_t den_b : {0u, 1u, 6u, 65537u, 1u << 31, ~0u}) {
          const RatioCase c = {RatioOperation{static_cast<unsigned char>(GetParam())},
                               {static_cast<std::int32_t>(num_a), den_a},
                               {static_cast<std::int32_t>(num_b), den_b},
                               static_cast<double>(num_a) / den_a};
          ASSERT_EQ(checkRatioCase(c), "");
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Operations, RatioReference, testing::Range(0, kRatioOperations));

}  // namespace
