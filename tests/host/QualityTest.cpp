// How near high quality comes to the truth: the picture drawn with 16 by 16 samples in every pixel, each taken from the
// layer at its exact place.
#include <cmath>

#include "effect/ProjectiveMap.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

constexpr int kSamples = 16;

// The projective map of the corners onto the unit square: m[row][column], for row vectors (x, y, 1).
M_Matrix3 unitSquareFrom(const Corners& c) {
  M_Vector2T<double> quad[] = {{c.upper_left.x, c.upper_left.y},
                               {c.upper_right.x, c.upper_right.y},
                               {c.lower_right.x, c.lower_right.y},
                               {c.lower_left.x, c.lower_left.y}};
  M_Matrix3 map;
  EXPECT_EQ(1, KZFX_MapUnitSquareToFromQuad(quad, &map, 0));
  return map;
}

// The layer's pixel whose square holds a point; transparent outside.
std::uint8_t layerAt(const ConstImageView& layer, double x, double y, int channel) {
  const double column = std::floor(x);
  const double row = std::floor(y);
  if (!(column >= 0 && row >= 0 && column < layer.size.width && row < layer.size.height)) {
    return 0;
  }
  return static_cast<std::uint8_t>(layer.pixel(static_cast<int>(column), static_cast<int>(row))[channel]);
}

// The peak signal-to-noise ratio in dB, over the output's pixels and channels.
double psnr(const ConstImageView& layer, const Corners& c, Image& output) {
  const auto& m = unitSquareFrom(c).m;
  double squares = 0;
  for (int y = 0; y < output.size().height; ++y) {
    for (int x = 0; x < output.size().width; ++x) {
      double sums[4] = {};
      for (int i = 0; i < kSamples * kSamples; ++i) {
        const int row = i / kSamples;
        const double px = x + (i % kSamples + 0.5) / kSamples;
        const double py = y + (row + 0.5) / kSamples;
        const double w = m[0][2] * px + m[1][2] * py + m[2][2];
        const double u = (m[0][0] * px + m[1][0] * py + m[2][0]) / w * layer.size.width;
        const double v = (m[0][1] * px + m[1][1] * py + m[2][1]) / w * layer.size.height;
        for (int channel = 0; channel < 4; ++channel) {
          sums[channel] += layerAt(layer, u, v, channel);
        }
      }
      for (int channel = 0; channel < 4; ++channel) {
        const double drawn = static_cast<double>(output.view().pixel(x, y)[channel]);
        const double difference = drawn - sums[channel] / (kSamples * kSamples);
        squares += difference * difference;
      }
    }
  }
  return 10.0 * std::log10(255.0 * 255.0 / (squares / (4.0 * output.size().width * output.size().height)));
}

double qualityOf(const char* name, Image layer, const Corners& corners, Quality quality_level = Quality::High) {
  Instance instance = testing::instanceWith(testing::checkedEffect(), corners);
  auto frame = testing::renderFrame(instance, layer, {0, 0, 160, 160}, {.quality = quality_level});
  EXPECT_EQ(RenderPath::Perspective, frame.result.path);
  const double quality = psnr(asConst(layer.view()), corners, frame.pixels);
  ::testing::Test::RecordProperty(name, std::to_string(quality));
  return quality;
}

Corners square(double size, double degrees) {
  const double a = degrees * M_PI / 180.0;
  const auto at = [&](double x, double y) {
    return Point{80 + size * (x * std::cos(a) - y * std::sin(a)), 80 + size * (x * std::sin(a) + y * std::cos(a))};
  };
  return {at(-0.5, -0.5), at(0.5, -0.5), at(-0.5, 0.5), at(0.5, 0.5)};
}

Image wavesLayer() {
  return testing::waves({512, 512}, Depth::Bits8, 24);
}
Image noiseLayer() {
  return testing::noise({512, 512}, Depth::Bits8);
}

TEST(QualityTest, ShrunkAndInMildPerspectiveItIsNearTheTruth) {
  const Corners perspective{{12.3, 10.7}, {148.2, 22.4}, {8.9, 141.6}, {150.4, 130.9}};
  EXPECT_GE(qualityOf("waves_4", wavesLayer(), square(128, 0)), 38.0);
  EXPECT_GE(qualityOf("waves_8", wavesLayer(), square(64, 0)), 38.0);
  EXPECT_GE(qualityOf("waves_perspective", wavesLayer(), perspective), 38.0);
  EXPECT_GE(qualityOf("noise_4", noiseLayer(), square(128, 0)), 38.0);
  EXPECT_GE(qualityOf("noise_8", noiseLayer(), square(64, 0)), 38.0);
  EXPECT_GE(qualityOf("noise_perspective", noiseLayer(), perspective), 38.0);
}

TEST(QualityTest, ShrunkAndRotatedTheBoxIsTooWideButNotFarOff) {
  EXPECT_GE(qualityOf("waves_rotated", wavesLayer(), square(128, 30)), 30.0);
  EXPECT_GE(qualityOf("noise_rotated", noiseLayer(), square(128, 30)), 30.0);
}

TEST(QualityTest, AtBestTurnedPicturesAreNearTheTruthToo) {
  EXPECT_GE(qualityOf("waves_rotated_best", wavesLayer(), square(128, 30), Quality::Best), 38.0);
  EXPECT_GE(qualityOf("noise_rotated_best", noiseLayer(), square(128, 30), Quality::Best), 38.0);
}

}  // namespace
}  // namespace vantorel::host
