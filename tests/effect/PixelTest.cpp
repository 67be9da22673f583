#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "effect/FixedPoint.h"
#include "effect/PixelHelpers.h"
#include "tests/effect/ScriptedHost.h"

namespace {

constexpr std::int32_t kOne = 65536;

// The helpers of one depth, over pixels whose four channels are alike or told apart by pixelFromCode.
struct Family8 {
  using Pixel = std::uint32_t;
  static Pixel gray(int c) { return static_cast<Pixel>(c) * 0x01010101u; }
  static double channel(Pixel p) { return p & 255; }
  static Pixel mix(Pixel a, Pixel b, int w) { return MixPixels(a, b, w); }
  static Pixel average(Pixel a, Pixel b) { return static_cast<Pixel>(PixAverage(int(a), int(b))); }
  static Pixel sample(Pixel* p, int rowBytes, int u, int v, int du, int dv, int width, int height) {
    return static_cast<Pixel>(GetAPixel(reinterpret_cast<int*>(p), rowBytes, u, v, du, dv, width, height));
  }
  static Pixel sampleRow(Pixel* p, int u, int du, int width) {
    return static_cast<Pixel>(GetHSeg(reinterpret_cast<int*>(p), u, du, width));
  }
};

struct Family16 {
  using Pixel = PF_Pixel16;
  static Pixel gray(int c) {
    const auto channel = static_cast<std::uint16_t>(c);
    return {channel, channel, channel, channel};
  }
  static double channel(Pixel p) { return p.green; }
  static Pixel mix(Pixel a, Pixel b, int w) { return MixPixels16(a, b, w); }
  static Pixel average(Pixel a, Pixel b) { return PixAverage16(a, b); }
  static constexpr auto sample = GetAPixel16;
  static constexpr auto sampleRow = GetHSeg16;
};

struct FamilyFloat {
  using Pixel = PF_PixelFloat;
  static Pixel gray(int c) {
    const auto channel = static_cast<float>(c);
    return {channel, channel, channel, channel};
  }
  static double channel(Pixel p) { return p.blue; }
  static Pixel mix(Pixel a, Pixel b, int w) { return MixPixelsFloat(a, b, w); }
  static Pixel average(Pixel a, Pixel b) { return PixAverageFloat(a, b); }
  static constexpr auto sample = GetAPixelFloat;
  static constexpr auto sampleRow = GetHSegFloat;
};

template <typename Family>
class Pixels : public testing::Test {};
using Families = testing::Types<Family8, Family16, FamilyFloat>;
TYPED_TEST_SUITE(Pixels, Families);

}  // namespace

TEST(FixedPoint, MultiplyDivideInSinglePrecision) {
  struct {
    std::int32_t a, b, c, result;
  } const cases[] = {
      {196608, 32768, 65536, 98304},
      {1, 1, 65536, 0},
      {-1, 65536, 131072, 0},
      {-3, 65536, 131072, -1},             // toward zero
      {16777217, 65536, 65536, 16777216},  // loses its lowest bit
      {2147483647, 131072, 65536, INT32_MIN},
      {INT32_MIN, 131072, 65536, INT32_MIN},
      {INT32_MIN, 65536, -65536, INT32_MIN},
      {65536, 65536, 3 * 65536, 21845},
      {5, 5, 0, INT32_MIN},
      {0, 5, 0, INT32_MIN},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(KZ_FixMulDiv(c.a, c.b, c.c), c.result) << c.a << " * " << c.b << " / " << c.c;
  }
  EXPECT_EQ(FixedDiv(196608, 131072), 98304);
  EXPECT_EQ(FixedDiv(-1073741824, 1), INT32_MIN);
}

// Every factor against every pair of channels, against the rule itself.
TEST(Mix, EightBitsWholeDomain) {
  for (int f = 0; f < 256; ++f) {
    for (int a = 0; a < 256; ++a) {
      for (int b = 0; b < 256; b += 5) {
        const int mixed = f == 0 ? a : f == 255 ? b : a + static_cast<int>(std::floor((b - a) * f / 256.0));
        ASSERT_EQ(MixPixels(unsigned(a) << 16, unsigned(b) << 16, (f << 8) + 37 - 3 * kOne), unsigned(mixed) << 16)
            << a << " " << b << " " << f;
      }
    }
  }
  EXPECT_EQ(MixPixels(0x00FF0A00, 0xFF000000, 32768), 0x7F7F0500u);  // channels do not mingle
}

TYPED_TEST(Pixels, MixAndAverage) {
  using F = TypeParam;
  constexpr bool isFloat = std::is_same_v<F, FamilyFloat>;
  struct {
    int a, b, weight;
    double mixed;
  } const cases[] = {
      {10, 200, 0, 10},
      {10, 200, kOne, 10},
      {10, 200, kOne - 1, 200},
      {0, 255, 32768, isFloat ? double(255 * (128 / 255.0F)) : 127},
      {255, 0, 32768, isFloat ? double(255 + -255 * (128 / 255.0F)) : 127},
      {10, 0, 256, isFloat ? double(10 + -10 * (1 / 255.0F)) : 9},
      {0, 10, 256, isFloat ? double(10 * (1 / 255.0F)) : 0},
      {10, 200, -1, 200},  // only the fraction's high byte counts
  };
  for (const auto& c : cases) {
    EXPECT_EQ(F::channel(F::mix(F::gray(c.a), F::gray(c.b), c.weight)), c.mixed) << c.a << " " << c.b;
  }
  EXPECT_EQ(F::channel(F::average(F::gray(1), F::gray(1))), isFloat ? 1 : 0);
  EXPECT_EQ(F::channel(F::average(F::gray(255), F::gray(255))), isFloat ? 255 : 254);
  EXPECT_EQ(F::channel(F::average(F::gray(7), F::gray(4))), isFloat ? 5.5 : 5);
}

// A row of pixels 0, 10, 20 .. 70 between guards, sampled at every kind of position.
TYPED_TEST(Pixels, SampleARow) {
  using F = TypeParam;
  std::array<typename F::Pixel, 10> row;
  for (int i = 0; i < 10; ++i) {
    row[static_cast<std::size_t>(i)] = F::gray(i == 0 || i == 9 ? 200 : 10 * (i - 1));
  }
  const auto half = [](int c, int right) { return F::channel(F::mix(F::gray(c), F::gray(right), 32768)); };
  struct {
    double u, du, expected;
  } const cases[] = {
      {2.0, 1, 20},
      {2.0, 9, 20},
      {2.5, 1, half(20, 30)},
      {2.5, -3, half(20, 30)},
      {2.5, 1.99, half(20, 30)},
      {2.5, 2, 25},
      {2.5, 3, 25},
      {2.5, 4, 30},
      {2.5, 9.99, 40},
      {2.5, 10, 45},
      {2.5, 11.99, 45},
      {2.5, 12, 20},
      {2.5, 32767, 20},
      {7.5, 1, 70},
      {7.5, 2, 70},
      {8.5, 1, 70},
      {300.25, 1, 70},
      {-0.5, 1, 0},
      {-3.0, 1, 0},
      {-40.5, 5, 0},
  };
  for (const auto& c : cases) {
    const int u = static_cast<int>(c.u * kOne);
    auto* const p = reinterpret_cast<typename F::Pixel*>(reinterpret_cast<std::uintptr_t>(&row[1]) +
                                                         static_cast<std::uintptr_t>((u >> 16) * int(sizeof row[0])));
    EXPECT_EQ(F::channel(F::sampleRow(p, u, static_cast<int>(c.du * kOne), 8)), c.expected) << c.u << " by " << c.du;
  }
}

// The same down a column of a picture with padded rows.
TYPED_TEST(Pixels, SampleAColumn) {
  using F = TypeParam;
  GuardedWorld world(static_cast<int>(sizeof(typename F::Pixel)) * 2, 2, 8);
  for (int y = 0; y < 8; ++y) {
    world.at<typename F::Pixel>(0, y) = F::gray(10 * y);
    world.at<typename F::Pixel>(1, y) = F::gray(100 + 10 * y);
  }
  const auto half = [](int c, int below) { return F::channel(F::mix(F::gray(c), F::gray(below), 32768)); };
  struct {
    double v, dv, expected;
  } const cases[] = {{2.0, 1, 20},  {2.5, 1, half(20, 30)}, {2.5, -3, half(20, 30)},
                     {2.5, 3, 25},  {2.5, 4, 30},           {2.5, 10, 45},
                     {2.5, 12, 20}, {7.5, 1, 70},           {9.5, 1, 70},
                     {-0.5, 1, 0},  {-9.25, 3, 0}};
  for (const auto& c : cases) {
    const int v = static_cast<int>(c.v * kOne);
    auto* const p =
        reinterpret_cast<typename F::Pixel*>(reinterpret_cast<std::uintptr_t>(world.world.data) +
                                             static_cast<std::uintptr_t>((v >> 16) * world.world.row_bytes));
    const int dv = static_cast<int>(c.dv * kOne);
    EXPECT_EQ(F::channel(F::sample(p, world.world.row_bytes, 0, v, kOne, dv, 2, 8)), c.expected) << c.v;
    // Half a pixel to the right everything is half of a hundred more.
    const auto left = F::gray(0), right = F::gray(100);
    EXPECT_NEAR(F::channel(F::sample(p, world.world.row_bytes, 32768, v, kOne, dv, 2, 8)),
                c.expected + F::channel(F::mix(left, right, 32768)), 1.0)
        << c.v;
  }
}
