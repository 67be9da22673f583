#include "host/sampling/AreaSampler.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "host/frames/WorldStore.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

template <typename Pixel>
constexpr Depth kDepthOf = sizeof(Pixel) == 4   ? Depth::Bits8
                           : sizeof(Pixel) == 8 ? Depth::Bits16
                                                : Depth::Float;

template <typename Pixel>
PF_AreaSampler<Pixel> samplerOf(const AreaSamplers& samplers) {
  if constexpr (std::is_same_v<Pixel, PF_Pixel8>) {
    return samplers.sample8;
  } else if constexpr (std::is_same_v<Pixel, PF_Pixel16>) {
    return samplers.sample16;
  } else {
    return samplers.sample_float;
  }
}

template <typename Pixel>
bool sameBits(const Pixel& a, const Pixel& b) {
  using Bytes = std::array<std::byte, sizeof(Pixel)>;
  return std::bit_cast<Bytes>(a) == std::bit_cast<Bytes>(b);
}

struct Box {
  std::int32_t x;
  std::int32_t y;
  std::int32_t x_radius;
  std::int32_t y_radius;
};

// The mean over the box by the definition: the overlap of the box with every pixel of the world, in pixels.
template <typename Pixel>
long double truth(const ConstImageView& view, const Box& box, int channel) {
  using Channel = decltype(Pixel::alpha);
  const auto overlap = [](std::int32_t centre, std::int32_t radius, int pixel) {
    const long double low = (static_cast<long double>(centre) - radius) / 65536;
    const long double high = (static_cast<long double>(centre) + radius) / 65536;
    return std::max(0.0L, std::min(high, pixel + 0.5L) - std::max(low, pixel - 0.5L));
  };
  long double sum = 0;
  for (int y = 0; y < view.size.height; ++y) {
    for (int x = 0; x < view.size.width; ++x) {
      const long double weight = overlap(box.x, box.x_radius, x) * overlap(box.y, box.y_radius, y);
      if (weight > 0) {
        sum += weight * reinterpret_cast<const Channel*>(view.pixel(x, y))[channel];
      }
    }
  }
  return sum / (4.0L * box.x_radius / 65536 * box.y_radius / 65536);
}

// Boxes of the kinds that matter: of a pixel's size and larger, on whole positions and between, across every edge.
Box randomBox(std::mt19937& random, Size size) {
  const auto position = [&](int length) {
    const std::int32_t fixed = static_cast<std::int32_t>(random() % ((length + 24) * 65536u)) - 12 * 65536;
    return random() % 4 == 0 ? fixed & ~65535 : random() % 4 == 0 ? fixed | 32768 : fixed;
  };
  const auto radius = [&]() -> std::int32_t {
    switch (random() % 8) {
      case 0:
        return 32768;
      case 1:
        return 1 + random() % 32768;
      case 2:
        return 32768 + random() % 32768;
      case 3:
        return 1 + random() % (40 * 65536);
      case 4:
        return random() >> 1 | 1;
      default:
        return 65536 + random() % (8 * 65536);
    }
  };
  return {position(size.width), position(size.height), radius(), radius()};
}

template <typename Pixel>
class AreaSamplerTest : public ::testing::Test {};
using Pixels = ::testing::Types<PF_Pixel8, PF_Pixel16, PF_PixelFloat>;
TYPED_TEST_SUITE(AreaSamplerTest, Pixels);

TYPED_TEST(AreaSamplerTest, ReferenceIsTheMeanOverTheBoxAndEveryVariantEqualsItToTheBit) {
  using Channel = decltype(TypeParam::alpha);
  const Size size{37, 23};
  Image image = testing::noise(size, kDepthOf<TypeParam>);
  PF_LayerDef world = worldOf(image.view());
  std::mt19937 random(7);
  for (int i = 0; i < 20000; ++i) {
    const Box box = randomBox(random, size);
    const PF_SampleParams params{box.x_radius, box.y_radius, 0, &world, {}};
    TypeParam expected;
    ASSERT_EQ(ERR_NONE, samplerOf<TypeParam>(referenceAreaSamplers())(nullptr, box.x, box.y, &params, &expected));
    const std::string where = std::to_string(box.x) + "," + std::to_string(box.y) + " radii " +
                              std::to_string(box.x_radius) + "," + std::to_string(box.y_radius);
    for (int c = 0; i % 20 == 0 && c < 4; ++c) {
      const long double exact = truth<TypeParam>(asConst(image.view()), box, c);
      const Channel value = reinterpret_cast<const Channel*>(&expected)[c];
      if constexpr (std::is_floating_point_v<Channel>) {
        ASSERT_NEAR(static_cast<double>(exact), value, 1e-7) << where;
      } else {
        // The truth's own sums are exact up to some size of the box.
        const bool is_exact = std::max(box.x_radius, box.y_radius) < 9 * 65536;
        ASSERT_NEAR(static_cast<double>(exact), value, 0.5 + 1e-9) << where;
        ASSERT_TRUE(!is_exact || std::floor(exact + 0.5L) == value) << where;
      }
    }
    for (const InstructionSet set : kInstructionSets) {
      if (isAvailable(set)) {
        TypeParam sampled;
        ASSERT_EQ(ERR_NONE, samplerOf<TypeParam>(areaSamplersOf(set))(nullptr, box.x, box.y, &params, &sampled));
        ASSERT_TRUE(sameBits(expected, sampled)) << where << " with " << instructionSetName(set);
      }
    }
  }
}

TYPED_TEST(AreaSamplerTest, EndsOfTheRangeAndBadArgumentsGiveTransparentPixels) {
  Image image = testing::noise({4, 4}, kDepthOf<TypeParam>);
  PF_LayerDef world = worldOf(image.view());
  constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
  constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
  const TypeParam transparent{};
  for (const AreaSamplers* samplers : {&referenceAreaSamplers(), &areaSamplers()}) {
    const auto sample = samplerOf<TypeParam>(*samplers);
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
    EXPECT_TRUE(sampled({0, 0, 32768, kMin}, &world, false));
    EXPECT_TRUE(sampled({0, 0, 32768, 32768}, nullptr, false));
  }
}

TEST(AreaSamplerFloat, WholePositionsCopyEveryBitAndNoWeightlessNeighbourMatters) {
  Image image = testing::noise({3, 3}, Depth::Float);
  PF_LayerDef world = worldOf(image.view());
  const auto middle = [&] {
    PF_PixelFloat pixel;
    std::memcpy(&pixel, image.view().pixel(1, 1), sizeof(pixel));
    return pixel;
  };
  const float odd[] = {std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN(), -0.0F,
                       std::numeric_limits<float>::denorm_min(), std::numeric_limits<float>::signaling_NaN()};
  for (const float value : odd) {
    // All round the middle pixel lies a value that would show in any sum that it takes part in.
    for (int i = 0; i < 9; ++i) {
      const float pixel[4] = {value, std::nanf("7"), value, value};
      std::memcpy(image.view().pixel(i % 3, i / 3), pixel, sizeof(pixel));
    }
    for (const AreaSamplers* samplers : {&referenceAreaSamplers(), &areaSamplers()}) {
      const PF_SampleParams params{32768, 32768, 65536, &world, {}};
      PF_PixelFloat out;
      samplers->sample_float(nullptr, 65536, 65536, &params, &out);
      EXPECT_TRUE(sameBits(out, middle())) << value;

      const float half[4] = {0.5F, 0.25F, 1.0F, 8.0F};
      std::memcpy(image.view().pixel(1, 1), half, sizeof(half));
      std::memcpy(image.view().pixel(1, 2), half, sizeof(half));
      samplers->sample_float(nullptr, 65536, 65536 + 32768, &params, &out);
      EXPECT_TRUE(sameBits(out, middle())) << "between two equal pixels";
    }
  }
}

}  // namespace
}  // namespace vantorel::host
