// Pictures lie on their corners, whatever the samples.
#include <cstring>

#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

// An opaque layer, black on the left and white on the right.
Image halves(Size size) {
  Image image = dirty(size, Depth::Float);
  for (const auto [x, y, c] : channelsOf(size.width, size.height)) {
    setChannel(image.view(), x, y, c, c == 0 || x >= size.width / 2 ? 1.0 : 0.0);
  }
  return image;
}

double rowSum(const Image& image, int y, int c) {
  double sum = 0.0;
  for (int x = 0; x < image.size().width; ++x) {
    sum += channelAt(image, x, y, c);
  }
  return sum;
}

TEST(PlacementTest, EnlargedEdgesLandWhereTheyBelongOnBothPaths) {
  Image layer = halves({8, 8});
  for (const double times : {10.0, 40.0, 100.0}) {
    const double side = 8 * times;
    const Point at{times + 4.3, times + 5.6};
    const Corners square = rectangle(at.x, at.y, at.x + side, at.y + side);
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

TEST(PlacementTest, ALayerMovedByWholePixelsOrNoneKeepsItsBits) {
  const FrameOptions kinds[] = {{},
                                {.samples = 4},
                                {.quality = Quality::Best},
                                {.quality = Quality::Best, .samples = 4},
                                {.protocol = Protocol::Plain},
                                {.protocol = Protocol::Plain, .threads = 1},
                                {.threads = 3}};
  const struct {
    Rect place;
    Rect canvas;
  } cases[] = {
      {{-7, 3, 293, 48}, {-7, 3, 293, 48}}, {{0, 0, 300, 45}, {0, 0, 300, 45}}, {{3, 2, 303, 47}, {-4, -60, 330, 80}}};
  constexpr std::byte kTransparent[16] = {};
  for (const Depth depth : kDepths) {
    const Image layer = noise({300, 45}, depth);
    for (const auto& [place, canvas] : cases) {
      const Corners corners = rectangle(place.left, place.top, place.right, place.bottom);
      for (const FrameOptions& options : kinds) {
        const Frame frame = renderFrame(corners, layer, canvas, options);
        EXPECT_EQ(RenderPath::Perspective, frame.result.path);
        EXPECT_EQ(canvas.width(), frame.result.drawn.width());
        EXPECT_EQ(canvas == place, frame.result.drawn.top == 0) << "only rows that the effect wants are asked of it";
        for (const auto [x, y] : pixelsOf(canvas)) {
          const bool is_inside = x >= place.left && x < place.right && y >= place.top && y < place.bottom;
          const std::byte* const expected =
              is_inside ? layer.view().pixel(x - place.left, y - place.top) : kTransparent;
          const std::byte* const drawn = frame.pixels.view().pixel(x - canvas.left, y - canvas.top);
          ASSERT_EQ(0, std::memcmp(expected, drawn, bytesPerPixel(depth)))
              << static_cast<int>(depth) << " bits, at " << x << ", " << y << ", case " << (&options - kinds);
        }
      }
    }
  }
}

TEST(PlacementTest, AMapWhoseHorizonMeetsATilesCornerIsDrawn) {
  // The left and right sides meet at (256, 0), a corner of four tiles.
  const Corners corners{{192, 128}, {320, 128}, {64, 384}, {448, 384}};
  Image layer = waves({64, 64}, Depth::Bits8, 64);
  const auto frame = renderFrame(corners, layer, {0, 0, 512, 512}, {.quality = Quality::Best});
  for (const int x : {240, 250, 256, 260, 280}) {
    EXPECT_EQ(255, channelAt(frame.pixels, x, 200, 0)) << x;
  }
}

}  // namespace
}  // namespace vantorel::host
