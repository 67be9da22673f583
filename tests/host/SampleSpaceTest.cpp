// The spaces that positions are counted in, at every instruction set.
#include "host/sampling/SampleSpace.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <random>

#include "host/frames/WorldStore.h"
#include "host/sampling/AreaSampler.h"
#include "tests/InstructionSets.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

constexpr double kUnit = 65536.0;

// The mean of a channel over the part of a box that lies in the world; pixel k covers [k, k + 1).
double meanInside(const ConstImageView& world, double left, double top, double right, double bottom, int channel) {
  const auto cut = [](double begin, double end, double size) {
    return end <= 0        ? std::pair(0.0, 1.0)
           : begin >= size ? std::pair(size - 1, size)
                           : std::pair(std::max(begin, 0.0), std::min(end, size));
  };
  const auto [x0, x1] = cut(left, right, world.size.width);
  const auto [y0, y1] = cut(top, bottom, world.size.height);
  double sum = 0.0;
  for (int y = 0; y < world.size.height; ++y) {
    for (int x = 0; x < world.size.width; ++x) {
      const double width = std::min(x1, x + 1.0) - std::max(x0, double(x));
      const double height = std::min(y1, y + 1.0) - std::max(y0, double(y));
      sum += std::max(width, 0.0) * std::max(height, 0.0) * channelAt(world, x, y, channel);
    }
  }
  return sum / ((x1 - x0) * (y1 - y0));
}

TEST(SampleSpaceTest, ABoxAtTheBorderGivesTheMeanOfItsPartInside) {
  Image image = noise({23, 17}, Depth::Float);
  PF_LayerDef world = worldOf(image.view());
  std::mt19937 random(2);
  std::uniform_int_distribution<std::int32_t> place(-98304, 18 * 65536);
  std::uniform_int_distribution<std::int32_t> radius(32768, 8 * 65536);
  for (const InstructionSet set : availableSets()) {
    for (int i = 0; i < 3000; ++i) {
      const auto some_radius = [&] { return i % 2 == 0 ? 32768 : radius(random); };
      const PF_SampleParams params{some_radius(), some_radius(), 0, &world, {}};
      const std::int32_t x = place(random);
      const std::int32_t y = place(random);
      PF_PixelFloat out{};
      areaSamplers(set, SampleSpace::OutlineExtended).sample_float(nullptr, x, y, &params, &out);
      const double expected =
          meanInside(asConst(image.view()), (x - params.x_radius) / kUnit, (y - params.y_radius) / kUnit,
                     (x + params.x_radius) / kUnit, (y + params.y_radius) / kUnit, 0);
      ASSERT_NEAR(expected, static_cast<double>(out.alpha), 1e-4) << x / kUnit << ", " << y / kUnit;
    }
  }
}

TEST(SampleSpaceTest, BoxesAreCutToTheWorldAndThoseOutsideTakeTheNearestPixel) {
  constexpr std::int32_t kOne = 65536;
  constexpr std::int32_t kHalf = 32768;
  struct Case {
    std::int32_t centre;
    std::int32_t radius;
    std::int32_t cut_centre;
    std::int32_t cut_radius;
  };
  for (const Case& c : {
           Case{3 * kOne, kHalf, 3 * kOne, kHalf},
           {0, 10 * kOne, 9 * kHalf, 5 * kOne},
           {-5 * kOne, kHalf, 0, kHalf},
           {-5 * kOne, 9 * kHalf, 0, kHalf},  // up to the world's edge
           {20 * kOne, kOne, 9 * kOne, kHalf},
           {1 - kOne, kHalf, 0, kHalf},      // one unit inside, too short for a radius
           {2 - kOne, kHalf, 1 - kHalf, 1},  // two
           {3 - kOne, kHalf, 2 - kHalf, 2},  // three, made even
           {10 * kOne - 1, kHalf, 9 * kOne, kHalf},
           {10 * kOne - 3, kHalf, 10 * kOne - kHalf - 2, 2},
       }) {
    std::int32_t centre = c.centre;
    std::int32_t radius = c.radius;
    cutToWorld(&centre, &radius, 10);
    EXPECT_EQ(std::pair(c.cut_centre, c.cut_radius), std::pair(centre, radius)) << c.centre << ", " << c.radius;
  }
}

TEST(SampleSpaceTest, HalfAPixelIsTakenOffAndFarPositionsAreTransparent) {
  Image image = noise({23, 17}, Depth::Bits8);
  PF_LayerDef world = worldOf(image.view());
  const PF_SampleParams params{40000, 32768, 0, &world, {}};
  for (const InstructionSet set : availableSets()) {
    PF_Pixel8 centred{};
    PF_Pixel8 outlined{};
    areaSamplers(set).sample8(nullptr, 7 * 65536, 5 * 65536, &params, &centred);
    areaSamplers(set, SampleSpace::Outline).sample8(nullptr, 7 * 65536 + 32768, 5 * 65536 + 32768, &params, &outlined);
    EXPECT_EQ(0, std::memcmp(&centred, &outlined, sizeof(centred)));
    for (const SampleSpace space : {SampleSpace::Outline, SampleSpace::OutlineExtended}) {
      PF_Pixel8 far{1, 2, 3, 4};
      areaSamplers(set, space).sample8(nullptr, std::numeric_limits<std::int32_t>::min(), 65536, &params, &far);
      EXPECT_EQ(0, std::memcmp(&far, "\0\0\0\0", sizeof(far)));
    }
  }
}

}  // namespace
}  // namespace vantorel::host
