#include "host/sampling/AreaSampler.h"

#include <cstring>
#include <limits>
#include <random>
#include <tuple>
#include <type_traits>

#include "host/frames/WorldStore.h"
#include "tests/InstructionSets.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

template <typename Pixel>
constexpr Depth kDepthOf = static_cast<Depth>(2 * sizeof(Pixel));

template <typename Pixel>
PF_AreaSampler<Pixel> samplerOf(InstructionSet set) {
  const AreaSamplers& samplers = areaSamplers(set);
  return std::get<PF_AreaSampler<Pixel>>(std::tuple(samplers.sample8, samplers.sample16, samplers.sample_float));
}

template <typename Pixel>
bool sameBits(const Pixel& a, const Pixel& b) {
  return std::memcmp(&a, &b, sizeof(Pixel)) == 0;
}

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

struct Box {
  std::int32_t x;
  std::int32_t y;
  std::int32_t x_radius;
  std::int32_t y_radius;
};

__extension__ using Uint128 = unsigned __int128;

// The mean over the box as AreaSampler.h defines it, from the overlaps of the box with every pixel of the world.
template <typename Pixel>
Pixel definition(const ConstImageView& view, const Box& box) {
  using Channel = decltype(Pixel::alpha);
  constexpr bool kIsFloat = std::is_floating_point_v<Channel>;
  using Sum = std::conditional_t<kIsFloat, double, Uint128>;
  const auto overlap = [](std::int64_t centre, std::int64_t radius, std::int64_t pixel) {
    return std::max<std::int64_t>(
        std::min(centre + radius, pixel * 65536 + 32768) - std::max(centre - radius, pixel * 65536 - 32768), 0);
  };
  const Sum area = static_cast<Sum>(2 * std::int64_t{box.x_radius}) * static_cast<Sum>(2 * std::int64_t{box.y_radius});
  Channel channels[4];
  for (int c = 0; c < 4; ++c) {
    Sum total = 0;
    for (int y = 0; y < view.size.height; ++y) {
      Sum row = 0;
      for (int x = 0; x < view.size.width; ++x) {
        const auto weight = static_cast<Sum>(overlap(box.x, box.x_radius, x));
        row += weight * static_cast<Sum>(reinterpret_cast<const Channel*>(view.pixel(x, y))[c]);
      }
      total += static_cast<Sum>(overlap(box.y, box.y_radius, y)) * row;
    }
    channels[c] = static_cast<Channel>(kIsFloat ? total * (1 / area) : (total + area / 2) / area);
  }
  return {channels[0], channels[1], channels[2], channels[3]};
}

// Boxes of the kinds that matter: of a pixel's size and larger, on whole positions and between, across every edge.
Box randomBox(std::mt19937& random, Size size) {
  const auto position = [&](int length) {
    const std::int32_t fixed = static_cast<std::int32_t>(random() % ((length + 24) * 65536u)) - 12 * 65536;
    return random() % 4 == 0 ? fixed & ~65535 : random() % 4 == 0 ? fixed | 32768 : fixed;
  };
  // From the smallest to the largest; small boxes are drawn most often.
  constexpr std::pair<std::int32_t, std::int32_t> kRadii[] = {
      {32768, 32768}, {1, 32768},     {32768, 65535},     {1, 40 * 65536},    {1, kMax},
      {65536, 98304}, {65536, 98304}, {65536, 9 * 65536}, {65536, 9 * 65536}, {65536, 9 * 65536}};
  const auto radius = [&] {
    const auto& [smallest, largest] = kRadii[random() % std::size(kRadii)];
    return static_cast<std::int32_t>(smallest + random() % (std::int64_t{largest} - smallest + 1));
  };
  return {position(size.width), position(size.height), radius(), radius()};
}

// Every variant gives the definition's mean over the box, to the bit.
template <typename Pixel>
void expectDefinition(Image& image, const Box& box) {
  PF_LayerDef world = worldOf(image.view());
  const PF_SampleParams params{box.x_radius, box.y_radius, 0, &world, {}};
  const Pixel expected = definition<Pixel>(asConst(image.view()), box);
  for (const InstructionSet set : availableSets()) {
    Pixel sampled;
    ASSERT_EQ(ERR_NONE, samplerOf<Pixel>(set)(nullptr, box.x, box.y, &params, &sampled));
    ASSERT_TRUE(sameBits(expected, sampled))
        << box.x << ',' << box.y << " radii " << box.x_radius << ',' << box.y_radius;
  }
}

template <typename Pixel>
class AreaSamplerTest : public ::testing::Test {};
using Pixels = ::testing::Types<PF_Pixel8, PF_Pixel16, PF_PixelFloat>;
TYPED_TEST_SUITE(AreaSamplerTest, Pixels);

TYPED_TEST(AreaSamplerTest, EveryVariantGivesTheMeanOverTheBoxToTheBit) {
  const Size size{37, 23};
  Image image = noise(size, kDepthOf<TypeParam>);
  std::mt19937 random(7);
  for (int i = 0; i < 20000 && !this->HasFatalFailure(); ++i) {
    expectDefinition<TypeParam>(image, randomBox(random, size));
  }
}

// The mean over equal parts of the largest value and the one below it lies halfway between them, whatever the box's
// size; the reciprocal of its area may be rounded down.
TYPED_TEST(AreaSamplerTest, HalvesAreRoundedUp) {
  using Channel = decltype(TypeParam::alpha);
  Image image = noise({4, 4}, kDepthOf<TypeParam>);
  for (const auto [x, y] : pixelsOf(4, 4)) {
    const auto value = static_cast<Channel>(x < 2 ? 65534 : 65535);
    setPixel<Channel>(image.view(), x, y, {value, value, value, value});
  }
  for (int i = 0; i < 2000 && !this->HasFatalFailure(); ++i) {
    expectDefinition<TypeParam>(image, {98304, 65536, 32769 + 32 * i, 98304 - 31 * i});
  }
}

TYPED_TEST(AreaSamplerTest, EndsOfTheRangeAndBadArgumentsGiveTransparentPixels) {
  Image image = noise({4, 4}, kDepthOf<TypeParam>);
  PF_LayerDef world = worldOf(image.view());
  const TypeParam transparent{};
  for (const InstructionSet set : availableSets()) {
    const auto sample = samplerOf<TypeParam>(set);
    const auto sampled = [&](const Box& box, PF_LayerDef* source, bool expect_success) {
      const PF_SampleParams params{box.x_radius, box.y_radius, 0, source, {}};
      TypeParam out;
      std::memset(&out, 0x5A, sizeof(out));
      EXPECT_EQ(expect_success, sample(nullptr, box.x, box.y, &params, &out) == ERR_NONE);
      return sameBits(out, transparent);
    };
    EXPECT_TRUE(sampled({kMin, kMin, 32768, 32768}, &world, true));
    EXPECT_TRUE(sampled({kMax, 0, 32768, 524288}, &world, true));
    EXPECT_TRUE(sampled({0, kMax, kMax / 2, 1}, &world, true));
    // The whole world is a speck of the largest box there is.
    EXPECT_TRUE(sampled({0, 0, kMax, kMax}, &world, true) || kDepthOf<TypeParam> == Depth::Float);
    EXPECT_TRUE(sampled({0, 0, 0, 32768}, &world, false));
    EXPECT_TRUE(sampled({0, 0, 32768, 0}, &world, false));
    EXPECT_TRUE(sampled({0, 0, 32768, kMin}, &world, false));
    EXPECT_TRUE(sampled({0, 0, 32768, 32768}, nullptr, false));
  }
}

TEST(AreaSamplerFloat, WholePositionsCopyEveryBitAndNoWeightlessNeighbourMatters) {
  Image image = noise({3, 3}, Depth::Float);
  PF_LayerDef world = worldOf(image.view());
  const float odd[] = {std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN(), -0.0F,
                       std::numeric_limits<float>::denorm_min(), std::numeric_limits<float>::signaling_NaN()};
  for (const float value : odd) {
    for (const InstructionSet set : availableSets()) {
      // All round the middle pixel lies a value that would show in any sum that it takes part in.
      for (const auto [x, y] : pixelsOf(3, 3)) {
        setPixel<float>(image.view(), x, y, {value, std::nanf("7"), value, value});
      }
      const auto is_middle_pixel = [&](std::int32_t y) {
        const PF_SampleParams params{32768, 32768, 65536, &world, {}};
        PF_PixelFloat sampled;
        areaSamplers(set).sample_float(nullptr, 65536, y, &params, &sampled);
        return std::memcmp(&sampled, image.view().pixel(1, 1), sizeof(sampled)) == 0;
      };
      EXPECT_TRUE(is_middle_pixel(65536)) << value;
      for (const int y : {1, 2}) {
        setPixel<float>(image.view(), 1, y, {0.5F, 0.25F, 1.0F, 8.0F});
      }
      EXPECT_TRUE(is_middle_pixel(65536 + 32768)) << "between two equal pixels";
    }
  }
}

}  // namespace
}  // namespace vantorel::host
