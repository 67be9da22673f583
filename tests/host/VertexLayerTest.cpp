#include "host/composing/VertexFactor.h"
#include "host/composing/VertexLayer.h"

#include <algorithm>
#include <cmath>

#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

// The layer's bilinear interpolation, counted from its outline, the outermost pixels carried on.
double interpolated(const ConstImageView& layer, double x, double y, int c) {
  const auto at = [&](double column, double row) {
    const int i = std::clamp(static_cast<int>(column), 0, layer.size.width - 1);
    const int k = std::clamp(static_cast<int>(row), 0, layer.size.height - 1);
    return channelAt(layer, i, k, c);
  };
  const double left = std::floor(x - 0.5);
  const double top = std::floor(y - 0.5);
  const double a = x - 0.5 - left;
  const double b = y - 0.5 - top;
  return (at(left, top) * (1 - a) + at(left + 1, top) * a) * (1 - b) +
         (at(left, top + 1) * (1 - a) + at(left + 1, top + 1) * a) * b;
}

TEST(VertexLayerTest, HoldsTheLayersInterpolationAtEveryFractionOfAPixel) {
  const Image layer = noise({151, 5}, Depth::Float);
  for (const int factor : {1, 2, 4, 8}) {
    const int width = 151 * factor;
    Image enlarged = dirty({width, 5 * factor}, Depth::Float);
    enlargeToVertices(layer.view(), factor, {0, 0, 151, 3}, enlarged.view());
    enlargeToVertices(layer.view(), factor, {2, 3, 151, 5}, enlarged.view());
    enlargeToVertices(layer.view(), factor, {0, 3, 2, 5}, enlarged.view());
    for (const auto [x, y, c] : channelsOf(width, 5 * factor)) {
      EXPECT_NEAR(interpolated(layer.view(), x / double(factor), y / double(factor), c), channelAt(enlarged, x, y, c),
                  1e-6);
    }
  }
}

TEST(VertexLayerTest, RoundsIntegersToNearestAndKeepsTheLayersOwnPixels) {
  Image layer = noise({2, 2}, Depth::Bits8);
  const std::uint8_t values[] = {10, 13, 20, 40};
  for (int i = 0; i < 4; ++i) {
    *layer.view().pixel(i % 2, i / 2) = std::byte{values[i]};
  }
  Image enlarged = dirty({4, 4}, Depth::Bits8);
  enlargeToVertices(asConst(layer.view()), 2, {0, 0, 2, 2}, enlarged.view());
  const int expected[] = {10, 10, 12, 13, 10, 10, 12, 13, 15, 15, 21, 27, 20, 20, 30, 40};
  for (int i = 0; i < 16; ++i) {
    EXPECT_EQ(expected[i], channelAt(enlarged, i % 4, i / 4, 0)) << i;
  }
}

TEST(VertexLayerTest, SixteenBitsHoldEveryValueOfEightAndGiveItBack) {
  Image layer = noise({256, 1}, Depth::Bits8);
  for (int x = 0; x < 256; ++x) {
    *layer.view().pixel(x, 0) = static_cast<std::byte>(x);
  }
  Image fine = dirty({1024, 4}, Depth::Bits16);
  Image back = dirty({1024, 4}, Depth::Bits8);
  enlargeToVertices(asConst(layer.view()), 4, {0, 0, 256, 1}, fine.view());
  narrow(asConst(fine.view()), back.view());
  for (int x = 0; x < 256; ++x) {
    EXPECT_EQ(257 * x, channelAt(fine, 4 * x + 2, 0, 0));
    EXPECT_EQ(x, channelAt(back, 4 * x + 2, 0, 0));
  }
}

// The scan's own mean of 8-bit values is too dark by a quarter of a level.
TEST(VertexLayerTest, EnlargedEightBitsAreNoDarkerOnTheWholeThanSixteen) {
  const Corners corners{{10, 10}, {390, 10}, {180, 205}, {390, 390}};
  Image layer = waves({8, 8}, Depth::Bits8, 5);
  Image finer = dirty({8, 8}, Depth::Bits16);
  for (const auto [x, y, c] : channelsOf(8, 8)) {
    setChannel(finer.view(), x, y, c, channelAt(layer, x, y, c) / 255.0);
  }
  const FrameOptions options{.quality = Quality::Best};
  const auto coarse = renderFrame(corners, layer, {0, 0, 400, 400}, options);
  const auto fine = renderFrame(corners, finer, {0, 0, 400, 400}, options);
  EXPECT_EQ(RenderPath::Bilinear, coarse.result.path);
  double difference = 0.0;
  for (const auto [x, y] : pixelsOf(400, 400)) {
    difference += channelAt(coarse.pixels, x, y, 1) - channelAt(fine.pixels, x, y, 1) / 257.0;
  }
  EXPECT_LT(std::abs(difference / (400 * 400)), 0.02);
}

TEST(VertexFactorTest, RisesWithTheEnlargementAndTheSamplesAsFarAsTheLayerAllows) {
  struct Case {
    int side;
    double scale;
    int samples;
    int factor;
  };
  const Case cases[] = {{100, 1.0, 1, 1},   {100, 1.0, 4, 2},  {100, 3.9, 1, 2},  {100, 4.0, 1, 4},
                        {128, 40.0, 1, 8},  {129, 40.0, 1, 4}, {256, 40.0, 1, 4}, {257, 40.0, 1, 2},
                        {16383, 1.0, 4, 2}, {16384, 1.0, 4, 1}};
  for (const auto& [side, scale, samples, factor] : cases) {
    const double end = side * scale;
    const Corners dart{{0.0, 0.0}, {end, 0.0}, {0.0, end}, {0.3 * end, 0.3 * end}};
    const FramePlan plan(dart, {}, side, side, {side, side}, {.samples = samples});
    EXPECT_EQ(vertexFactorFor({&plan, 1}), factor) << side << " by " << scale << " with " << samples;
  }
  const FramePlan perspective({{0, 0}, {9, 0}, {0, 9}, {9, 9}}, {}, 9, 9, {9, 9}, {});
  EXPECT_EQ(vertexFactorFor({&perspective, 1}), 0);
}

}  // namespace
}  // namespace vantorel::host
