// How near high quality comes to the truth: the picture drawn with 16 by 16 samples in every pixel, each taken from the
// layer at its exact place.
#include <cmath>

#include "host/geometry/Homography.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

constexpr int kSide = 16;
const std::vector<PixelPosition> kSamples = pixelsOf(kSide, kSide);

// The layer's pixel whose square holds a point; transparent outside.
double layerAt(const Image& layer, const Point& at, int channel) {
  const int x = static_cast<int>(std::floor(at.x));
  const int y = static_cast<int>(std::floor(at.y));
  const bool is_inside = x >= 0 && y >= 0 && x < layer.size().width && y < layer.size().height;
  return is_inside ? channelAt(layer, x, y, channel) : 0.0;
}

// The layer on these corners, with channels from 0 to 255.
Image truth(const Image& layer, const Corners& corners, Size size) {
  Image picture = dirty(size, Depth::Float);
  const Corners outline = rectangle(0, 0, layer.size().width, layer.size().height);
  const Homography back = Homography::ofQuadrilateral(corners, outline).value();
  for (const auto [x, y] : pixelsOf(size.width, size.height)) {
    double sums[4] = {};
    for (const auto [column, row] : kSamples) {
      const Point at = back(Point{x + (column + 0.5) / kSide, y + (row + 0.5) / kSide});
      for (int channel = 0; channel < 4; ++channel) {
        sums[channel] += layerAt(layer, at, channel);
      }
    }
    for (int channel = 0; channel < 4; ++channel) {
      setChannel(picture.view(), x, y, channel, sums[channel] / (kSide * kSide));
    }
  }
  return picture;
}

Corners square(double size, double degrees) {
  const double a = degrees * M_PI / 180.0;
  const auto at = [&](double x, double y) {
    return Point{80 + size * (x * std::cos(a) - y * std::sin(a)), 80 + size * (x * std::sin(a) + y * std::cos(a))};
  };
  return {at(-0.5, -0.5), at(0.5, -0.5), at(-0.5, 0.5), at(0.5, 0.5)};
}

TEST(QualityTest, ShrunkPicturesAreNearTheTruth) {
  const std::pair<const char*, Image> layers[] = {{"waves_", waves({512, 512}, Depth::Bits8, 24)},
                                                  {"noise_", noise({512, 512}, Depth::Bits8)}};
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
    for (const auto& [kind, layer] : layers) {
      const auto frame = renderFrame(c.corners, layer, {0, 0, 160, 160}, {.quality = c.quality});
      EXPECT_EQ(RenderPath::Perspective, frame.result.path);
      const double quality = psnr(frame.pixels, truth(layer, c.corners, {160, 160}));
      EXPECT_GE(quality, c.least) << kind << c.name;
      RecordProperty(std::string(kind) + c.name, std::to_string(quality));
    }
  }
}

}  // namespace
}  // namespace vantorel::host
