#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <type_traits>

#include "effect/FixedPoint.h"
#include "effect/bilinear/PixelHelpers.h"
#include "tests/effect/ScriptedHost.h"

namespace {

constexpr std::int32_t kOne = 65536;

// Gray pixels of a depth, known by their channel.
template <typename Record, typename Word>
struct Gray {
  using Pixel = Word;
  static Pixel gray(int channel) {
    const auto c = static_cast<decltype(Record::alpha)>(channel);
    return std::bit_cast<Pixel>(Record{c, c, c, c});
  }
  static double channel(Pixel pixel) {
    const auto [alpha, red, green, blue] = std::bit_cast<Record>(pixel);
    EXPECT_TRUE(red == alpha && green == alpha && blue == alpha);
    return alpha;
  }
};

struct Helpers8 : Gray<PF_Pixel8, std::uint32_t> {
  static constexpr auto kMix = MixPixels;
  static constexpr auto kAverage = PixAverage;
  static constexpr auto kSample = GetAPixel;
  static constexpr auto kSampleRow = GetHSeg;
};

struct Helpers16 : Gray<PF_Pixel16, PF_Pixel16> {
  static constexpr auto kMix = MixPixels16;
  static constexpr auto kAverage = PixAverage16;
  static constexpr auto kSample = GetAPixel16;
  static constexpr auto kSampleRow = GetHSeg16;
};

struct HelpersFloat : Gray<PF_PixelFloat, PF_PixelFloat> {
  static constexpr auto kMix = MixPixelsFloat;
  static constexpr auto kAverage = PixAverageFloat;
  static constexpr auto kSample = GetAPixelFloat;
  static constexpr auto kSampleRow = GetHSegFloat;
};

template <typename Helpers>
class Pixels : public testing::Test {};
using Depths = testing::Types<Helpers8, Helpers16, HelpersFloat>;
TYPED_TEST_SUITE(Pixels, Depths);

}  // namespace

TEST(FixedPoint, MultiplyDivideInSinglePrecision) {
  const std::int32_t cases[][4] = {{196608, 32768, 65536, 98304},       // 3 * 0.5 / 1
                                   {3, 65536, 131072, 1},               // toward zero
                                   {-1, 65536, 131072, 0},              // toward zero
                                   {16777217, 65536, 65536, 16777216},  // loses its lowest bit
                                   {393676, 2046220, 29725, 27100008},  // every step rounds to single precision
                                   {2147483647, 131072, 65536, INT32_MIN},
                                   {0, 5, 0, INT32_MIN}};
  for (const auto& c : cases) {
    EXPECT_EQ(KZ_FixMulDiv(c[0], c[1], c[2]), c[3]) << c[0] << " * " << c[1] << " / " << c[2];
  }
  EXPECT_EQ(FixedDiv(196608, 131072), 98304);
}

TYPED_TEST(Pixels, MixAndAverage) {
  using F = TypeParam;
  constexpr bool kIsFloat = std::is_same_v<F, HelpersFloat>;
  const auto mixed = [](int a, int b, int weight) { return F::channel(F::kMix(F::gray(a), F::gray(b), weight)); };
  EXPECT_EQ(mixed(10, 200, kOne), 10);
  EXPECT_EQ(mixed(10, 200, kOne - 1), 200);
  EXPECT_EQ(mixed(255, 0, 32768), kIsFloat ? double(255.0F - 255.0F * (128 / 255.0F)) : 127);
  EXPECT_EQ(mixed(10, 0, 256), kIsFloat ? double(10.0F - 10.0F * (1 / 255.0F)) : 9);
  EXPECT_EQ(mixed(0, 10, 256 - 3 * kOne), kIsFloat ? double(10.0F * (1 / 255.0F)) : 0);
  EXPECT_EQ(MixPixels(0x00FF0A00, 0xFF000000, 32768), 0x7F7F0500u);  // channels do not mingle
  EXPECT_EQ(F::channel(F::kAverage(F::gray(1), F::gray(1))), kIsFloat ? 1 : 0);
  EXPECT_EQ(F::channel(F::kAverage(F::gray(255), F::gray(4))), kIsFloat ? 129.5 : 129);
}

// Pixels 0, 10, 20 .. 70, sampled along a row and down a column (with padded rows) at every kind of position.
TYPED_TEST(Pixels, SampleAlongBothAxes) {
  using F = TypeParam;
  using Pixel = typename F::Pixel;
  constexpr int kBytes = sizeof(Pixel);
  GuardedWorld wide(kBytes * 2, 8, 1);
  GuardedWorld tall(kBytes * 2, 1, 8);
  for (int i = 0; i < 8; ++i) {
    wide.at<Pixel>(i, 0) = tall.at<Pixel>(0, i) = F::gray(10 * i);
  }
  const double half = F::channel(F::kMix(F::gray(20), F::gray(30), 32768));
  struct {
    double position, step, expected;
  } const cases[] = {{2.0, 1, 20},    {2.0, 9, 20},     {2.5, 1, half}, {2.5, -3, half}, {2.5, 1.99, half},
                     {2.5, 2, 25},    {2.5, 3.99, 25},  {2.5, 4, 30},   {2.5, 10, 45},   {2.5, 11.99, 45},
                     {2.5, 12, 20},   {2.5, 32767, 20}, {7.5, 1, 70},   {7.5, 2, 70},    {8.5, 1, 70},
                     {300.25, 1, 70}, {-0.5, 1, 0},     {-3.0, 1, 0},   {-40.5, 5, 0}};
  for (const auto& c : cases) {
    const int at = static_cast<int>(c.position * kOne);
    const int step = static_cast<int>(c.step * kOne);
    // The address of the position's pixel may lie outside the world.
    using Argument = std::conditional_t<kBytes == 4, int, Pixel>;
    const auto pixel_at = [at](const GuardedWorld& world, int pitch) {
      return reinterpret_cast<Argument*>(reinterpret_cast<std::intptr_t>(world.world.data) +
                                         std::intptr_t{at >> 16} * pitch);
    };
    EXPECT_EQ(F::channel(F::kSampleRow(pixel_at(wide, kBytes), at, step, 8)), c.expected)
        << c.position << " " << c.step;
    EXPECT_EQ(F::channel(F::kSample(pixel_at(wide, kBytes), 0, at, 0, step, kOne, 8, 1)), c.expected);
    const int row_bytes = tall.world.row_bytes;
    EXPECT_EQ(F::channel(F::kSample(pixel_at(tall, row_bytes), row_bytes, 0, at, kOne, step, 1, 8)), c.expected);
  }
}
