#include "bench/quality/Truth.h"

#include <gtest/gtest.h>

#include <cmath>

#include "bench/quality/Psnr.h"
#include "tests/Pixels.h"

namespace vantorel::quality {
namespace {

constexpr host::Size kLayerSize{12, 8};
constexpr host::Size kCanvas{40, 40};

Layer ramp() {
  Layer layer{kLayerSize, {}};
  for (const auto [x, y] : pixelsOf(kLayerSize.width, kLayerSize.height)) {
    layer.grey.push_back(static_cast<float>(10 * x + 5 * y));
  }
  return layer;
}

Truth truthOn(const Ring& ring, const Layer& layer) {
  return truthOf(std::span(&layer, 1), ProjectiveMap(layer.size, ring), ring, kCanvas);
}

// A ramp is its own interpolation, so its mean over a pixel is its value at the pixel's middle; pixel k of the layer
// has its middle at k + 0.5, and the outermost half pixels carry the border's colour on.
TEST(Truth, PlacesTheLayersOutlineOnTheCorners) {
  const Layer layer = ramp();
  const Truth truth = truthOn({{{4, 6}, {28, 6}, {28, 22}, {4, 22}}}, layer);
  for (const auto& [x, y] : {std::pair{10, 12}, std::pair{20, 9}}) {
    const double layer_x = (x + 0.5 - 4) / 2 - 0.5;
    const double layer_y = (y + 0.5 - 6) / 2 - 0.5;
    EXPECT_NEAR(truth.grey[0][truth.index(x, y)], 10 * layer_x + 5 * layer_y, 1e-3);
  }
  EXPECT_NEAR(truth.grey[0][truth.index(4, 6)], 0, 1e-6);
  EXPECT_NEAR(truth.grey[0][truth.index(27, 21)], 10 * 11 + 5 * 7, 1e-6);
}

TEST(Truth, CutsOffAtTheOutline) {
  const Ring ring = {{{12.3, 2.6}, {30.1, 14.9}, {17.2, 33.4}, {1.7, 19.8}}};
  const Truth truth = truthOn(ring, white({8, 8}));
  for (const auto [x, y] : pixelsOf(truth.frame)) {
    const std::size_t index = truth.index(x, y);
    EXPECT_NEAR(truth.alpha[index] / 255, coverage(ring, x, y), 0.01) << x << ", " << y;
    EXPECT_NEAR(truth.grey[0][index], truth.alpha[index], 1e-3);
  }
}

TEST(PictureError, TellsInsideEdgesAndOutsideApart) {
  const Layer layer = white({8, 8});
  const Truth truth = truthOn({{{4.5, 4}, {12.5, 4}, {12.5, 12}, {4.5, 12}}}, layer);
  Layer picture{kCanvas, std::vector<float>(40 * 40)};
  const auto paint = [&](int x, int y, float grey) { picture.grey[std::size_t{40} * y + x] = grey; };
  for (const auto [x, y] : pixelsOf(host::Rect{5, 4, 12, 12})) {
    paint(x, y, 245);
  }
  paint(30, 30, 7);
  const host::Image image = imageOf(picture, host::Depth::Bits8);
  const PictureError error = compare(image.view(), truth, 0);
  // Alpha is 255 everywhere in the picture: right inside, 127.5 too much on the edges.
  EXPECT_EQ(error.inside.pixels, 7U * 8U);
  EXPECT_NEAR(error.inside.sum, 56 * 0.75 * 100, 1e-6);
  EXPECT_EQ(error.edges.pixels, 16U);
  EXPECT_NEAR(error.edges.sum, 16 * 127.5 * 127.5, 1e-3);
  EXPECT_EQ(error.largest_outside, 255);
  EXPECT_NEAR(error.inside.psnr(), 10 * std::log10(255 * 255 / 75.0), 1e-9);
}

}  // namespace
}  // namespace vantorel::quality
