// Quadrilaterals in the layer that are mapped onto the corners.
#include <cmath>

#include "host/geometry/Homography.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

constexpr Size kLayer{120, 130};

// The largest difference, over the inside of the picture, from the layer's value at the place that a pixel's middle
// comes from.
double largestDifference(const Image& layer, const Image& picture, const Corners& source, const Corners& target) {
  const Homography back = Homography::ofQuadrilateral(target, source).value();
  double largest = 0.0;
  for (const auto [x, y] : pixelsOf(Rect{2, 2, picture.size().width - 2, picture.size().height - 2})) {
    const Point p = back(Point{x + 0.5, y + 0.5});
    const double expected = channelAt(layer, static_cast<int>(p.x), static_cast<int>(p.y), 1);
    largest = std::max(largest, std::abs(expected - channelAt(picture, x, y, 1)));
  }
  return largest;
}

TEST(SourceTest, ItsCornersGoOntoTheTargetsWhereverTheHorizonLies) {
  const Image layer = waves(kLayer, Depth::Float, 120);
  const Corners target = rectangle(0, 0, 300, 280);
  // In the second one the lines meet at y = 50 and in the third at x = 150: the horizon runs through the layer.
  for (const Corners& source :
       {Corners{{22, 31}, {100, 40}, {15, 111}, {90, 97}}, Corners{{50, 70}, {70, 70}, {10, 110}, {110, 110}},
        Corners{{20, 20}, {100, 55}, {20, 120}, {100, 92}}}) {
    for (const Quality quality : {Quality::High, Quality::Best}) {
      Instance instance = instanceWith(target);
      ASSERT_TRUE(instance.setSource(source));
      auto frame = renderFrame(instance, layer, {0, 0, 300, 280}, {.quality = quality});
      EXPECT_EQ(RenderPath::Perspective, frame.result.path);
      EXPECT_LT(largestDifference(layer, frame.pixels, source, target), 0.08);
    }
  }
}

TEST(SourceTest, ItIsCutAtTheLayersOutline) {
  const Image layer = waves({40, 40}, Depth::Float, 40);
  Instance instance = instanceWith(rectangle(0, 0, 100, 100));
  ASSERT_TRUE(instance.setSource(rectangle(-10, 10, 40, 60)));
  auto frame = renderFrame(instance, layer, {0, 0, 100, 100}, {});
  EXPECT_EQ(0.0, channelAt(frame.pixels, 19, 30, 0));
  EXPECT_EQ(1.0, channelAt(frame.pixels, 20, 30, 0));
  EXPECT_EQ(1.0, channelAt(frame.pixels, 99, 59, 0));
  EXPECT_EQ(0.0, channelAt(frame.pixels, 99, 60, 0));
}

TEST(SourceTest, ThereAndBackGivesTheLayerAgain) {
  const Image layer = waves({200, 160}, Depth::Bits8, 24);
  const Corners quad{{30, 20}, {330, 50}, {10, 300}, {350, 280}};
  const auto placed = renderFrame(quad, layer, {0, 0, 360, 310}, {.quality = Quality::Best});
  Instance back = instanceWith(rectangle(0, 0, 200, 160));
  ASSERT_TRUE(back.setSource(quad));
  const auto again = renderFrame(back, placed.pixels, {0, 0, 200, 160}, {.quality = Quality::Best});
  EXPECT_GE(psnr(layer, again.pixels, 2), 45.0);
}

TEST(SourceTest, RefusesSourcesAndTargetsWithoutAMap) {
  const Image layer = noise({40, 40}, Depth::Bits8);
  Image output = dirty({40, 40}, Depth::Bits8);
  const auto input_of = [&](const Corners& source, const Corners& target, const FrameOptions& options) {
    Instance instance = instanceWith(target);
    EXPECT_TRUE(instance.setSource(source));
    const auto result = instance.render(layer.view(), {0, 0, 40, 40}, output.view(), options);
    return result ? "" : result.error().input;
  };
  const Corners square = rectangle(0, 0, 40, 40);
  const Corners notched{{0, 0}, {40, 0}, {0, 40}, {10, 10}};
  EXPECT_EQ("", input_of(square, square, {}));
  EXPECT_EQ("source", input_of(notched, square, {}));
  EXPECT_EQ("source", input_of(square, notched, {}));
  EXPECT_EQ("source", input_of(rectangle(3, 3, 3, 3), square, {}));
  EXPECT_EQ("source", input_of(square, square, {.placement = Placement::Centres}));
  Instance instance = instanceWith(square);
  EXPECT_EQ("source's upper left corner", instance.setSource(rectangle(-99999, 0, 1, 1)).error().input);
}

}  // namespace
}  // namespace vantorel::host
