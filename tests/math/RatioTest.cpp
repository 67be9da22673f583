// Rationals and integers: what exact arithmetic leaves open, error codes and odd arguments.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

#include "tests/math/RatioChecks.h"

namespace {

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

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

TEST(Ratio, ConversionsRoundHalvesUpwards) {
  for (const auto& [half, rounded] : {std::pair{M_Ratio{5, 2}, 3}, {M_Ratio{-1, 2}, 0}}) {
    M_Ratio out = {7, 7};
    bool exact = true;
    EXPECT_EQ(M_ConvRatio(&half, 1, &out, &exact, nullptr), 0);
    EXPECT_EQ(out, (M_Ratio{rounded, 1}));
    EXPECT_FALSE(exact);
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

}  // namespace
