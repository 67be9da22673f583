// Quadrilaterals in the layer that go onto the corners.
#include <cmath>

#include "host/geometry/Homography.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

using testing::renderFrame;

constexpr Size kLayer{120, 130};

Corners rectangle(double left, double top, double right, double bottom) {
  return {{left, top}, {right, top}, {left, bottom}, {right, bottom}};
}

// The largest difference, over the inside of the picture, from the layer's value at the place that a pixel's middle
// comes from.
double largestDifference(const Image& layer, Image& picture, const Corners& source, const Corners& target) {
  const Homography back = Homography::ofQuadrilateral(target, source).value();
  double largest = 0.0;
  for (int y = 2; y < picture.size().height - 2; ++y) {
    for (int x = 2; x < picture.size().width - 2; ++x) {
      const Point p = back(Point{x + 0.5, y + 0.5});
      const int column = static_cast<int>(p.x);
      const int row = static_cast<int>(p.y);
      const auto value = [](const ConstImageView& view, int i, int k) {
        return static_cast<double>(reinterpret_cast<const float*>(view.pixel(i, k))[1]);
      };
      largest = std::max(largest, std::abs(value(layer.view(), column, row) - value(asConst(picture.view()), x, y)));
    }
  }
  return largest;
}

TEST(SourceTest, ItsCornersGoOntoTheTargetsWhereverTheHorizonLies) {
  const Image layer = testing::waves(kLayer, Depth::Float, 120);
  Image input = testing::waves(kLayer, Depth::Float, 120);
  const Corners target = rectangle(0, 0, 300, 280);
  // In the second one the lines meet at y = 50 and in the third at x = 150: the horizon runs through the layer.
  for (const Corners& source :
       {Corners{{22, 31}, {100, 40}, {15, 111}, {90, 97}}, Corners{{50, 70}, {70, 70}, {10, 110}, {110, 110}},
        Corners{{20, 20}, {100, 55}, {20, 120}, {100, 92}}}) {
    for (const Quality quality : {Quality::High, Quality::Best}) {
      Instance instance = testing::instanceWith(testing::checkedEffect(), target);
      ASSERT_TRUE(instance.setSource(source));
      auto frame = renderFrame(instance, input, {0, 0, 300, 280}, {.quality = quality});
      EXPECT_EQ(RenderPath::Perspective, frame.result.path);
      EXPECT_LT(largestDifference(layer, frame.pixels, source, target), 0.08);
    }
  }
}

TEST(SourceTest, ItIsCutAtTheLayersOutline) {
  Image layer = testing::waves({40, 40}, Depth::Float, 40);
  Instance instance = testing::instanceWith(testing::checkedEffect(), rectangle(0, 0, 100, 100));
  ASSERT_TRUE(instance.setSource(rectangle(-10, 10, 40, 60)));
  auto frame = renderFrame(instance, layer, {0, 0, 100, 100}, {});
  const auto alpha = [&](int x, int y) { return reinterpret_cast<const float*>(frame.pixels.view().pixel(x, y))[0]; };
  EXPECT_EQ(0.0F, alpha(19, 30));
  EXPECT_EQ(1.0F, alpha(20, 30));
  EXPECT_EQ(1.0F, alpha(99, 59));
  EXPECT_EQ(0.0F, alpha(99, 60));
}

TEST(SourceTest, ThereAndBackGivesTheLayerAgain) {
  Image layer = testing::waves({200, 160}, Depth::Bits8, 24);
  const Corners quad{{30, 20}, {330, 50}, {10, 300}, {350, 280}};
  Instance there = testing::instanceWith(testing::checkedEffect(), quad);
  auto placed = renderFrame(there, layer, {0, 0, 360, 310}, {.quality = Quality::Best});
  Instance back = testing::instanceWith(testing::checkedEffect(), rectangle(0, 0, 200, 160));
  ASSERT_TRUE(back.setSource(quad));
  auto again = renderFrame(back, placed.pixels, {0, 0, 200, 160}, {.quality = Quality::Best});
  double squares = 0.0;
  for (int y = 2; y < 158; ++y) {
    for (int i = 8; i < 198 * 4; ++i) {
      squares +=
          std::pow(static_cast<double>(layer.view().row(y)[i]) - static_cast<double>(again.pixels.view().row(y)[i]), 2);
    }
  }
  EXPECT_GE(10.0 * std::log10(255.0 * 255.0 * 156 * 196 * 4 / squares), 45.0);
}

TEST(SourceTest, RefusesSourcesAndTargetsWithoutAMap) {
  Image layer = testing::noise({40, 40}, Depth::Bits8);
  Image output = testing::dirty({40, 40}, Depth::Bits8);
  const auto inputOf = [&](const Corners& source, const Corners& target, const FrameOptions& options) {
    Instance instance = testing::instanceWith(testing::checkedEffect(), target);
    EXPECT_TRUE(instance.setSource(source));
    const auto result = instance.render(asConst(layer.view()), {0, 0, 40, 40}, output.view(), options);
    return result ? std::string() : result.error().input;
  };
  const Corners square = rectangle(0, 0, 40, 40);
  const Corners notched{{0, 0}, {40, 0}, {0, 40}, {10, 10}};
  EXPECT_EQ("", inputOf(square, square, {}));
  EXPECT_EQ("source", inputOf(notched, square, {}));
  EXPECT_EQ("source", inputOf(square, notched, {}));
  EXPECT_EQ("source", inputOf(rectangle(3, 3, 3, 3), square, {}));
  EXPECT_EQ("source", inputOf(square, square, {.placement = Placement::Centres}));
  Instance instance = testing::instanceWith(testing::checkedEffect(), square);
  EXPECT_EQ("source's upper left corner", instance.setSource(rectangle(-99999, 0, 1, 1)).error().input);
}

}  // namespace
}  // namespace vantorel::host
