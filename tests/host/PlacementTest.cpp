// Pictures lie on their corners, whatever the samples.
#include <cmath>

#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

using testing::renderFrame;

// An opaque layer, black on the left and white on the right.
Image halves(Size size) {
  Image image = testing::dirty(size, Depth::Float);
  for (int i = 0; i < size.width * size.height * 4; ++i) {
    const int x = i / 4 % size.width;
    testing::setChannel(image.view(), x, i / 4 / size.width, i % 4, i % 4 == 0 || x >= size.width / 2 ? 1.0 : 0.0);
  }
  return image;
}

double rowSum(const Image& image, int y, int c) {
  double sum = 0.0;
  for (int x = 0; x < image.size().width; ++x) {
    sum += testing::channelAt(image, x, y, c);
  }
  return sum;
}

TEST(PlacementTest, EnlargedEdgesLandWhereTheyBelongOnBothPaths) {
  Image layer = halves({8, 8});
  for (const double times : {10.0, 40.0, 100.0}) {
    const double side = 8 * times;
    const Point at{times + 4.3, times + 5.6};
    const Corners square = testing::rectangle(at.x, at.y, at.x + side, at.y + side);
    // Its lower left corner lies nearly on the diagonal: its rows reach from there to the right side.
    const Corners straight{
        at, {at.x + side, at.y}, {at.x + 0.48 * side, at.y + 0.5 * side}, {at.x + side, at.y + side}};
    const int canvas_side = static_cast<int>(side + 2 * times) + 10;
    for (const Corners& corners : {square, straight}) {
      for (const int samples : {1, 2}) {
        const auto frame = renderFrame(corners, layer, {0, 0, canvas_side, canvas_side},
                                       {.quality = Quality::Best, .samples = samples});
        const bool is_straight = frame.result.path == RenderPath::Bilinear;
        EXPECT_EQ(corners == straight, is_straight);
        for (const double share : {0.2, 0.3, 0.4}) {
          const int y = static_cast<int>(at.y + share * side);
          const double left = is_straight ? at.x + 0.48 / 0.5 * (y + 0.5 - at.y) : at.x;
          const double width = at.x + side - left;
          EXPECT_NEAR(width, rowSum(frame.pixels, y, 0), 0.05);
          EXPECT_NEAR(width / 2.0, rowSum(frame.pixels, y, 1), 0.05) << times << " times, row " << y;
        }
      }
    }
  }
}

TEST(PlacementTest, ALayerMovedByWholePixelsOrNoneStaysItselfToTheBit) {
  const FrameOptions kinds[] = {{},
                                {.samples = 4},
                                {.quality = Quality::Best},
                                {.quality = Quality::Best, .samples = 4},
                                {.protocol = Protocol::Plain},
                                {.protocol = Protocol::Plain, .threads = 1},
                                {.threads = 3}};
  for (const Depth depth : testing::kDepths) {
    const Image layer = testing::noise({300, 45}, depth);
    for (const Rect& place : {Rect{-7, 3, 293, 48}, Rect{0, 0, 300, 45}}) {
      for (const FrameOptions& options : kinds) {
        const Corners corners = testing::rectangle(place.left, place.top, place.right, place.bottom);
        const auto frame = renderFrame(corners, layer, place, options);
        EXPECT_EQ(RenderPath::Perspective, frame.result.path);
        EXPECT_TRUE(testing::samePixels(layer, frame.pixels))
            << static_cast<int>(depth) << " bits, left " << place.left << ", case " << (&options - kinds);
      }
    }
  }
}

TEST(PlacementTest, AMapWhoseHorizonMeetsATilesCornerIsDrawn) {
  // The left and right sides meet at (256, 0), a corner of four tiles.
  const Corners corners{{192, 128}, {320, 128}, {64, 384}, {448, 384}};
  Image layer = testing::waves({64, 64}, Depth::Bits8, 64);
  const auto frame = renderFrame(corners, layer, {0, 0, 512, 512}, {.quality = Quality::Best});
  for (const int x : {240, 250, 256, 260, 280}) {
    EXPECT_EQ(255, testing::channelAt(frame.pixels, x, 200, 0)) << x;
  }
}

}  // namespace
}  // namespace vantorel::host
