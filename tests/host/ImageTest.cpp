#include "host/Image.h"

#include <cstring>

#include "host/Downsample.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

TEST(ImageTest, RefusesSizesThatItCannotHold) {
  EXPECT_EQ(ErrorKind::InvalidArgument, Image::create({0, 5}, Depth::Bits8).error().kind);
  EXPECT_EQ(ErrorKind::InvalidArgument, Image::create({5, -1}, Depth::Float).error().kind);
  EXPECT_EQ(ErrorKind::InvalidArgument, Image::create({1 << 28, 1}, Depth::Float).error().kind);
  const auto image = Image::create({5, 3}, Depth::Bits16);
  ASSERT_TRUE(image);
  EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(image->view().row(2)) % Image::kRowAlignment);
}

TEST(DownsampleTest, AveragesBlocksWithTransparencyOrNothingBeyondTheEdges) {
  Image layer = testing::dirty({3, 3}, Depth::Bits8);
  for (int i = 0; i < 9; ++i) {
    const std::uint8_t v = static_cast<std::uint8_t>(10 * (i + 1));
    const std::uint8_t pixel[4] = {v, 255, 0, 1};
    std::memcpy(layer.view().pixel(i % 3, i / 3), pixel, 4);
  }
  const struct {
    BlockEdges edges;
    std::uint8_t rows[2][8];
  } cases[] = {{BlockEdges::Transparent, {{30, 255, 0, 1, 23, 128, 0, 1}, {38, 128, 0, 1, 23, 64, 0, 0}}},
               {BlockEdges::LeftOut, {{30, 255, 0, 1, 45, 255, 0, 1}, {75, 255, 0, 1, 90, 255, 0, 1}}}};
  for (const auto& c : cases) {
    Image scaled = testing::dirty({2, 2}, Depth::Bits8);
    downsample(asConst(layer.view()), 2, c.edges, scaled.view());
    EXPECT_EQ(0, std::memcmp(c.rows[0], scaled.view().row(0), 8)) << static_cast<int>(c.edges);
    EXPECT_EQ(0, std::memcmp(c.rows[1], scaled.view().row(1), 8)) << static_cast<int>(c.edges);
  }

  for (const Depth depth : {Depth::Bits16, Depth::Float}) {
    Image picture = testing::noise({8, 8}, depth);
    Image same = testing::dirty({8, 8}, depth);
    downsample(asConst(picture.view()), 1, BlockEdges::Transparent, same.view());
    EXPECT_TRUE(testing::samePixels(picture, same));
  }
}

}  // namespace
}  // namespace vantorel::host
