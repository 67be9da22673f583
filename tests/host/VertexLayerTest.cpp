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
    return testing::channelAt(layer, i, k, c);
  };
  const double left = std::floor(x - 0.5);
  const double top = std::floor(y - 0.5);
  const double a = x - 0.5 - left;
  const double b = y - 0.5 - top;
  return (at(left, top) * (1 - a) + at(left + 1, top) * a) * (1 - b) +
         (at(left, top + 1) * (1 - a) + at(left + 1, top + 1) * a) * b;
}

TEST(VertexLayerTest, HoldsTheLayersInterpolationAtEveryFractionOfAPixel) {
  const Image layer = testing::noise({151, 5}, Depth::Float);
  for (const int factor : {1, 2, 4, 8}) {
    const int width = 151 * factor;
    Image enlarged = testing::dirty({width, 5 * factor}, Depth::Float);
    enlargeToVertices(layer.view(), factor, {0, 0, 151, 3}, enlarged.view());
    enlargeToVertices(layer.view(), factor, {2, 3, 151, 5}, enlarged.view());
    enlargeToVertices(layer.view(), factor, {0, 3, 2, 5}, enlarged.view());
    for (int i = 0; i < width * 5 * factor * 4; ++i) {
      const int x = i / 4 % width;
      const int y = i / 4 / width;
      EXPECT_NEAR(interpolated(layer.view(), static_cast<double>(x) / factor, static_cast<double>(y) / factor, i % 4),
                  testing::channelAt(enlarged, x, y, i % 4), 1e-6);
    }
  }
}

TEST(VertexLayerTest, RoundsIntegersToNearestAndKeepsTheLayersOwnPixels) {
  Image layer = testing::noise({2, 2}, Depth::Bits8);
  const std::uint8_t values[] = {10, 13, 20, 40};
  for (int i = 0; i < 4; ++i) {
    *layer.view().pixel(i % 2, i / 2) = std::byte{values[i]};
  }
  Image enlarged = testing::dirty({4, 4}, Depth::Bits8);
  enlargeToVertices(asConst(layer.view()), 2, {0, 0, 2, 2}, enlarged.view());
  const int expected[] = {10, 10, 12, 13, 10, 10, 12, 13, 15, 15, 21, 27, 20, 20, 30, 40};
  for (int i = 0; i < 16; ++i) {
    EXPECT_EQ(expected[i], testing::channelAt(enlarged, i % 4, i / 4, 0)) << i;
  }
}

TEST(VertexLayerTest, SixteenBitsHoldEveryValueOfEightAndGiveItBack) {
  Image layer = testing::noise({256, 1}, Depth::Bits8);
  for (int x = 0; x < 256; ++x) {
    *layer.view().pixel(x, 0) = static_cast<std::byte>(x);
  }
  Image fine = testing::dirty({1024, 4}, Depth::Bits16);
  Image back = testing::dirty({1024, 4}, Depth::Bits8);
  enlargeToVertices(asConst(layer.view()), 4, {0, 0, 256, 1}, fine.view());
  narrow(asConst(fine.view()), back.view());
  for (int x = 0; x < 256; ++x) {
    EXPECT_EQ(257 * x, testing::channelAt(fine, 4 * x + 2, 0, 0));
    EXPECT_EQ(x, testing::channelAt(back, 4 * x + 2, 0, 0));
  }
}

// The scan's own mean of 8-bit values is too dark by a quarter of a level.
TEST(VertexLayerTest, EnlargedEightBitsAreNoDarkerOnTheWholeThanSixteen) {
  const Corners corners{{10, 10}, {390, 10}, {180, 205}, {390, 390}};
  Image layer = testing::waves({8, 8}, Depth::Bits8, 5);
  Image finer = testing::dirty({8, 8}, Depth::Bits16);
  for (int i = 0; i < 8 * 8 * 4; ++i) {
    testing::setChannel(finer.view(), i / 4 % 8, i / 32, i % 4,
                        testing::channelAt(layer, i / 4 % 8, i / 32, i % 4) / 255.0);
  }
  const FrameOptions options{.quality = Quality::Best};
  const auto coarse = testing::renderFrame(corners, layer, {0, 0, 400, 400}, options);
  const auto fine = testing::renderFrame(corners, finer, {0, 0, 400, 400}, options);
  EXPECT_EQ(RenderPath::Bilinear, coarse.result.path);
  double difference = 0.0;
  for (int i = 0; i < 400 * 400; ++i) {
    difference += testing::channelAt(coarse.pixels, i % 400, i / 400, 1);
    difference -= testing::channelAt(fine.pixels, i % 400, i / 400, 1) / 257.0;
  }
  EXPECT_LT(std::abs(difference / (400 * 400)), 0.02);
}

}  // namespace
}  // namespace vantorel::host
