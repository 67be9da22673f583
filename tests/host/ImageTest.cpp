#include "host/Image.h"

#include <cmath>

#include "host/Downsample.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

TEST(ImageTest, RefusesSizesThatItCannotHold) {
  for (const Size& size : {Size{0, 5}, Size{5, -1}, Size{1 << 28, 1}}) {
    EXPECT_EQ(ErrorKind::InvalidArgument, Image::create(size, Depth::Float).error().kind) << sizeText(size);
  }
  const auto image = Image::create({5, 3}, Depth::Bits16);
  ASSERT_TRUE(image);
  EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(image->view().row(2)) % Image::kRowAlignment);
}

TEST(ImageTest, RectanglesWithoutPixelsAreEmpty) {
  for (const Rect& rect : {Rect{2, 3, 2, 9}, Rect{2, 3, 9, 3}, Rect{2, 3, 1, 9}, Rect{2, 3, 9, 2}, Rect{}}) {
    EXPECT_TRUE(rect.empty()) << ::testing::PrintToString(rect);
  }
  EXPECT_FALSE((Rect{2, 3, 3, 4}.empty()));
}

TEST(DownsampleTest, AveragesBlocksWithTransparencyOrNothingBeyondTheEdges) {
  const struct {
    BlockEdges edges;
    double pixels[4][4];
  } cases[] = {{BlockEdges::Transparent,
                {{30, 255, 0, 1}, {22.5, 127.5, 0, 0.5}, {37.5, 127.5, 0, 0.5}, {22.5, 63.75, 0, 0.25}}},
               {BlockEdges::LeftOut, {{30, 255, 0, 1}, {45, 255, 0, 1}, {75, 255, 0, 1}, {90, 255, 0, 1}}}};
  for (const Depth depth : kDepths) {
    Image layer = dirty({3, 3}, depth);
    const double white = depth == Depth::Bits8 ? 255.0 : depth == Depth::Bits16 ? 65535.0 : 1.0;
    for (const auto [x, y, c] : channelsOf(3, 3)) {
      const double pixel[4] = {10.0 * (3 * y + x + 1), 255, 0, 1};
      setChannel(layer.view(), x, y, c, pixel[c] / white);
    }
    for (const auto& [edges, pixels] : cases) {
      Image scaled = dirty({2, 2}, depth);
      downsample(asConst(layer.view()), 2, edges, scaled.view());
      for (const auto [x, y, c] : channelsOf(2, 2)) {
        const double mean = pixels[2 * y + x][c];
        EXPECT_EQ(depth == Depth::Float ? mean : std::round(mean), channelAt(scaled, x, y, c)) << x << ", " << y;
      }
    }
  }
}

}  // namespace
}  // namespace vantorel::host
