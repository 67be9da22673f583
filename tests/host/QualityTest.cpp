// How near high quality comes to the truth: the picture drawn with 16 by 16 samples in every pixel, each taken from the
// layer at its exact place.
#include <cmath>

#include "host/geometry/Homography.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

constexpr int kSamples = 16;

// The layer's pixel whose square holds a point; transparent outside.
double layerAt(const Image& layer, const Point& at, int channel) {
  const int x = static_cast<int>(std::floor(at.x));
  const int y = static_cast<int>(std::floor(at.y));
  const bool is_inside = x >= 0 && y >= 0 && x < layer.size().width && y < layer.size().height;
  return is_inside ? testing::channelAt(layer, x, y, channel) : 0.0;
}

// The peak signal-to-noise ratio in dB, over the output's pixels and channels.
double psnr(const Image& layer, const Corners& corners, const Image& output) {
  const Size size = layer.size();
  const Homography back =
      Homography::ofQuadrilateral(corners, testing::rectangle(0, 0, size.width, size.height)).value();
  double squares = 0;
  for (int y = 0; y < output.size().height; ++y) {
    for (int x = 0; x < output.size().width; ++x) {
      double sums[4] = {};
      for (int i = 0; i < kSamples * kSamples; ++i) {
        const int row = i / kSamples;
        const Point at = back(Point{x + (i % kSamples + 0.5) / kSamples, y + (row + 0.5) / kSamples});
        for (int channel = 0; channel < 4; ++channel) {
          sums[channel] += layerAt(layer, at, channel);
        }
      }
      for (int channel = 0; channel < 4; ++channel) {
        squares += std::pow(testing::channelAt(output, x, y, channel) - sums[channel] / (kSamples * kSamples), 2);
      }
    }
  }
  return 10.0 * std::log10(255.0 * 255.0 / (squares / (4.0 * output.size().width * output.size().height)));
}

Corners square(double size, double degrees) {
  const double a = degrees * M_PI / 180.0;
  const auto at = [&](double x, double y) {
    return Point{80 + size * (x * std::cos(a) - y * std::sin(a)), 80 + size * (x * std::sin(a) + y * std::cos(a))};
  };
  return {at(-0.5, -0.5), at(0.5, -0.5), at(-0.5, 0.5), at(0.5, 0.5)};
}

TEST(QualityTest, ShrunkPicturesAreNearTheTruth) {
  const Image waves = testing::waves({512, 512}, Depth::Bits8, 24);
  const Image noise = testing::noise({512, 512}, Depth::Bits8);
  const struct {
    const char* name;
    Corners corners;
    double least;
    Quality quality = Quality::High;
  } cases[] = {{"4", square(128, 0), 38.0},
               {"8", square(64, 0), 38.0},
               {"perspective", {{12.3, 10.7}, {148.2, 22.4}, {8.9, 141.6}, {150.4, 130.9}}, 38.0},
               {"rotated", square(128, 30), 30.0},  // the box is too wide but not far off
               {"rotated_best", square(128, 30), 38.0, Quality::Best}};
  for (const auto& c : cases) {
    for (const auto& [kind, layer] : {std::pair{"waves_", &waves}, std::pair{"noise_", &noise}}) {
      const auto frame = testing::renderFrame(c.corners, *layer, {0, 0, 160, 160}, {.quality = c.quality});
      EXPECT_EQ(RenderPath::Perspective, frame.result.path);
      const double quality = psnr(*layer, c.corners, frame.pixels);
      EXPECT_GE(quality, c.least) << kind << c.name;
      RecordProperty(std::string(kind) + c.name, std::to_string(quality));
    }
  }
}

}  // namespace
}  // namespace vantorel::host
