#include "bench/quality/EdgePlacement.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/Pixels.h"

namespace vantorel::quality {
namespace {

constexpr int kTimes = 20;
constexpr host::Size kCanvas{8 * kTimes + 50, 8 * kTimes + 50};

Ring square(double left, double top) {
  const double side = 8.0 * kTimes;
  return {{{left, top}, {left + side, top}, {left + side, top + side}, {left, top + side}}};
}

Truth truthAt(double left, double top) {
  const Layer layers[] = {white({8, 8}), checks({8, 8}, 2)};
  const Ring ring = square(left, top);
  return truthOf(layers, ProjectiveMap({8, 8}, ring), ring, kCanvas);
}

// The truth rounded to 8 bits.
host::Image pictureOf(const Truth& truth, std::size_t layer) {
  Layer rounded{kCanvas, std::vector<float>(static_cast<std::size_t>(kCanvas.width * kCanvas.height))};
  for (const auto [x, y] : pixelsOf(truth.frame)) {
    rounded.grey[static_cast<std::size_t>(y * kCanvas.width + x)] = std::round(truth.grey[layer][truth.index(x, y)]);
  }
  return imageOf(rounded, host::Depth::Bits8);
}

TEST(EdgePlacement, FindsDisplacementsAlongEitherAxis) {
  const Truth truth = truthAt(25.3, 24.6);
  for (const auto& [dx, dy] : {std::pair{0.0, 0.0}, std::pair{0.4, 0.0}, std::pair{0.0, -3.25}}) {
    const Truth moved = truthAt(25.3 + dx, 24.6 + dy);
    for (std::size_t layer = 0; layer < 2; ++layer) {
      const host::Image picture = pictureOf(moved, layer);
      const EdgePlacement placement = edgePlacement(picture.view(), truth, layer, kTimes);
      EXPECT_NEAR(placement.largest, std::max(std::abs(dx), std::abs(dy)), 0.02) << "layer " << layer;
      EXPECT_GT(placement.edges, 100U);
    }
  }
}

}  // namespace
}  // namespace vantorel::quality
