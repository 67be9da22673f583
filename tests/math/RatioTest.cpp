// Rationals, integers and the rational approximation: known numbers, error codes and odd arguments.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "math/M_Ratapprox.h"
#include "tests/math/RatioChecks.h"

namespace {

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr M_Ratio kFailed = {0, 0};

M_Ratio calculated(decltype(M_AddRatio)* calculate, M_Ratio a, M_Ratio b) {
  M_Ratio out = {7, 7};
  EXPECT_EQ(calculate(&a, &b, &out, nullptr), 0);
  return out;
}

TEST(Ratio, SumsAndProductsKeepTheirTerms) {
  EXPECT_EQ(calculated(M_AddRatio, {1, 3}, {1, 6}), (M_Ratio{3, 6}));
  EXPECT_EQ(calculated(M_SubRatio, {1, 2}, {1, 2}), (M_Ratio{0, 2}));
  EXPECT_EQ(calculated(M_AddRatio, {0, 5}, {3, 7}), (M_Ratio{3, 7}));
  EXPECT_EQ(calculated(M_SubRatio, {0, 5}, {3, 7}), (M_Ratio{-3, 7}));
  EXPECT_EQ(calculated(M_AddRatio, {2, 5}, {0, 7}), (M_Ratio{2, 5}));
  EXPECT_EQ(calculated(M_AddRatio, {0, 5}, {0, 7}), (M_Ratio{0, 7}));
  EXPECT_EQ(calculated(M_MulRatio, {2, 3}, {3, 4}), (M_Ratio{6, 12}));
}

TEST(Ratio, OverflowIsRetriedInLowestTerms) {
  EXPECT_EQ(calculated(M_AddRatio, {kMax - 1, 2}, {4, 2}), (M_Ratio{1073741825, 1}));
  EXPECT_EQ(calculated(M_AddRatio, {1 << 20, 1u << 31}, {1 << 20, (1u << 31) + (1u << 20)}), (M_Ratio{4097, 4196352}));
  EXPECT_EQ(calculated(M_MulRatio, {1 << 25, 9}, {600, 1 << 25}), (M_Ratio{200, 3}));
  EXPECT_EQ(calculated(M_SubRatio, {0, 1}, {kMin, 2}), (M_Ratio{1 << 30, 1})) << "no negative of kMin";
}

TEST(Ratio, OverflowIsApproximatedOrReported) {
  const M_Ratio large = {65536, 1};
  const M_Ratio tiny = {1, 65537};
  M_Ratio out = {7, 7};
  unsigned char status = M_RatioAllowApproximation;
  EXPECT_EQ(M_MulRatio(&large, &large, &out, &status), 0);
  EXPECT_EQ(status, M_RatioOverflow);
  EXPECT_EQ(out, kFailed);
  EXPECT_EQ(M_MulRatio(&large, &large, &out, nullptr), M_ErrRatioOverflow);
  status = M_RatioAllowApproximation;
  EXPECT_EQ(M_MulRatio(&tiny, &tiny, &out, &status), 0);
  EXPECT_EQ(status, M_RatioApproximate);
  EXPECT_EQ(out, (M_Ratio{0, 1}));
}

TEST(Ratio, MissingPointersWriteNothing) {
  const M_Ratio half = {1, 2};
  M_Ratio out = {7, 7};
  unsigned char status = 0x55;
  bool flag = true;
  for (const auto calculate : {M_AddRatio, M_SubRatio, M_MulRatio}) {
    EXPECT_EQ(calculate(nullptr, &half, &out, &status), M_ErrNullPointer);
    EXPECT_EQ(calculate(&half, nullptr, &out, &status), M_ErrNullPointer);
    EXPECT_EQ(calculate(&half, &half, nullptr, &status), M_ErrNullPointer);
  }
  EXPECT_EQ(M_ConvRatio(nullptr, 2, &out, &flag, &flag), M_ErrNullPointer);
  EXPECT_EQ(M_ConvRatio(&half, 2, nullptr, &flag, &flag), M_ErrNullPointer);
  EXPECT_EQ(M_ShortConvRatio(1, 2, 3, nullptr, &flag), M_ErrNullPointer);
  EXPECT_EQ(M_FpLong2Ratio(0.5, nullptr, &flag), M_ErrNullPointer);
  EXPECT_EQ(M_FpLong2Ratio(0.5, &out, nullptr), M_ErrNullPointer);
  EXPECT_EQ(M_UnsignedGCD(1, 2, nullptr), M_ErrNullPointer);
  EXPECT_EQ(status, 0x55);
  EXPECT_TRUE(flag);
  EXPECT_EQ(M_ReduceRatio(&half, nullptr, &flag), 0);
  EXPECT_FALSE(flag);
  EXPECT_EQ(out, (M_Ratio{7, 7}));
}

TEST(Ratio, Conversions) {
  const struct {
    M_Ratio in;
    std::uint32_t new_den;
    M_Ratio out;
    bool exact;
  } cases[] = {{{1, 3}, 6, {2, 6}, true},
               {{1, 3}, 10, {3, 10}, false},
               {{5, 2}, 1, {3, 1}, false},
               {{-1, 2}, 1, {0, 1}, false},
               {{kMin, 9}, 9, {kMin, 9}, true}};
  for (const auto& c : cases) {
    M_Ratio out = kFailed;
    bool exact = !c.exact;
    EXPECT_EQ(M_ConvRatio(&c.in, c.new_den, &out, &exact, nullptr), 0);
    EXPECT_EQ(out, c.out);
    EXPECT_EQ(exact, c.exact);
  }
  std::int32_t num = 7;
  EXPECT_EQ(M_ShortConvRatio(1 << 30, 1, 4, &num, nullptr), M_ErrNullPointer);
  EXPECT_EQ(num, 0);
}

TEST(Integers, RoundingIsHalfUpwards) {
  EXPECT_EQ(M_RoundDouble(2.5), 3);
  EXPECT_EQ(M_RoundDouble(-2.5), -2);
  EXPECT_EQ(M_RoundDouble(-2.6), -3);
  EXPECT_EQ(M_RoundDouble(-0.5), 0);
  EXPECT_EQ(M_RoundDouble(std::nextafter(0.5, 0.0)), 1) << "the sum is rounded to 1";
  EXPECT_EQ(M_RoundDouble(2147483647.25), kMax);
  for (const double outside : {2147483647.5, -2147483649.0, 1e300, double{-INFINITY}, double{NAN}}) {
    EXPECT_EQ(M_RoundDouble(outside), kMin) << outside;
  }
}

TEST(Ratapprox, KnownFractions) {
  const struct {
    std::int32_t limit;
    float x;
    M_Ratio expected;
  } cases[] = {{1 << 30, -0.75f, {-3, 4}}, {100, 3.14159265f, {22, 7}},   {1000, 3.14159265f, {355, 113}},
               {100, 150.7f, {100, 1}},    {100, 0.0f, {0, 1}},           {0, 5.0f, {0, 1}},
               {-1, NAN, {0, 1}},          {1 << 30, 3e-10f, {0, 1}},     {kMax, 0x1p-31f, {1, kMax}},
               {kMax, 0x1.0p-32f, {0, 1}}, {kMax, -INFINITY, {-kMax, 1}}, {1 << 30, 1.0f / 3.0f, {11184811, 1 << 25}}};
  for (const auto& c : cases) {
    EXPECT_EQ(ratapprox(c.limit, c.x), c.expected) << c.limit << ' ' << c.x;
  }
}

}  // namespace
