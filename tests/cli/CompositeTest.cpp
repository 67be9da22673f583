// Premultiplied "over", and reduction for proxies.
#include "cli/pictures/Composite.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

#include "cli/base/CommandError.h"
#include "cli/pictures/PixelConversion.h"
#include "cli/pictures/Reduce.h"

namespace vantorel::cli {
namespace {

host::Image imageOf(host::Size size, host::Depth depth) {
  return std::move(*host::Image::create(size, depth));
}

template <typename Channel>
Channel* channels(host::Image& image, int x, int y) {
  return reinterpret_cast<Channel*>(image.view().pixel(x, y));
}

TEST(Composite, EightBitOverIsTheRoundedFormulaForEveryAlphaAndValue) {
  host::Image picture = imageOf({256, 256}, host::Depth::Bits8);
  host::Image plate = imageOf({256, 256}, host::Depth::Bits8);
  for (int alpha = 0; alpha < 256; ++alpha) {
    for (int value = 0; value < 256; ++value) {
      std::uint8_t* front = channels<std::uint8_t>(picture, value, alpha);
      front[0] = front[1] = static_cast<std::uint8_t>(alpha / 2);
      front[2] = 255;  // brighter than its alpha allows: the sum is held at 255
      front[3] = static_cast<std::uint8_t>(alpha);
      std::uint8_t* back = channels<std::uint8_t>(plate, value, alpha);
      back[0] = back[1] = back[2] = static_cast<std::uint8_t>(value);
      back[3] = 255;
    }
  }
  compositeOver(picture.view(), std::as_const(plate).view());
  for (int alpha = 0; alpha < 256; ++alpha) {
    for (int value = 0; value < 256; ++value) {
      const std::uint8_t* result = channels<std::uint8_t>(picture, value, alpha);
      const int color = alpha / 2;
      const int expected = static_cast<int>(std::floor(color + value * (255 - alpha) / 255.0 + 0.5));
      ASSERT_EQ(result[0], expected) << "alpha " << alpha << ", plate " << value;
      ASSERT_EQ(result[2], 255);
      ASSERT_EQ(result[3], 255);
    }
  }
}

TEST(Composite, DeeperPicturesKeepTheirPrecision) {
  host::Image picture16 = imageOf({1, 1}, host::Depth::Bits16);
  host::Image plate16 = imageOf({1, 1}, host::Depth::Bits16);
  const std::uint16_t front[4] = {100, 200, 300, 32768};
  const std::uint16_t back[4] = {65535, 10001, 0, 65535};
  std::copy(front, front + 4, channels<std::uint16_t>(picture16, 0, 0));
  std::copy(back, back + 4, channels<std::uint16_t>(plate16, 0, 0));
  compositeOver(picture16.view(), std::as_const(plate16).view());
  EXPECT_EQ(channels<std::uint16_t>(picture16, 0, 0)[0], 100 + 32767);
  EXPECT_EQ(channels<std::uint16_t>(picture16, 0, 0)[1], 200 + 5000);  // 10001 * 32767 / 65535 = 5000.4
  EXPECT_EQ(channels<std::uint16_t>(picture16, 0, 0)[3], 65535);

  host::Image picture = imageOf({1, 1}, host::Depth::Float);
  host::Image plate = imageOf({1, 1}, host::Depth::Float);
  for (int c = 0; c < 4; ++c) {
    channels<float>(picture, 0, 0)[c] = 0.25f;
    channels<float>(plate, 0, 0)[c] = 8.0f;  // brighter than white stays so
  }
  compositeOver(picture.view(), std::as_const(plate).view());
  EXPECT_EQ(channels<float>(picture, 0, 0)[0], 0.25f + 8.0f * 0.75f);
}

TEST(Composite, ReducingAveragesWhatIsThere) {
  host::Image picture = imageOf({3, 1}, host::Depth::Bits8);
  for (int x = 0; x < 3; ++x) {
    std::fill_n(channels<std::uint8_t>(picture, x, 0), 4, static_cast<std::uint8_t>(10 * x));
  }
  host::Image half = reduced(std::as_const(picture).view(), 2);
  ASSERT_EQ(half.size(), (host::Size{2, 1}));
  EXPECT_EQ(channels<std::uint8_t>(half, 0, 0)[0], 5);
  EXPECT_EQ(channels<std::uint8_t>(half, 1, 0)[3], 20);
}

TEST(Composite, QuantisingRoundsAndHoldsTheRange) {
  EXPECT_EQ(quantise<std::uint8_t>(std::nanf("")), 0);
  EXPECT_EQ(quantise<std::uint16_t>(2.0f), 65535);
  EXPECT_EQ(quantise<std::uint8_t>(-1.0f), 0);
  EXPECT_EQ(quantise<std::uint8_t>(0.5f), 128);
}

}  // namespace
}  // namespace vantorel::cli
