#include "host/Alpha.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace vantorel::host {
namespace {

// Rounds to nearest, ties up, by the definition.
int premultiplied(int colour, int alpha) {
  return (2 * colour * alpha + 255) / 510;
}

int straight(int colour, int alpha) {
  return alpha == 0 ? colour : std::min(255, (2 * colour * 255 + alpha) / (2 * alpha));
}

// Every colour with every alpha, in rows with runs of equal alphas and of widths that no vector divides.
TEST(Alpha, EightBitRowsAreRoundedToNearestForEveryColourAndAlpha) {
  for (const bool alphas_run : {false, true}) {
    std::vector<std::uint8_t> row;
    for (int i = 0; i < 65536; ++i) {
      const int colour = alphas_run ? i & 255 : i >> 8;
      const int alpha = alphas_run ? i >> 8 : i & 255;
      for (const int value : {colour, 255 - colour, colour ^ 85, alpha}) {
        row.push_back(static_cast<std::uint8_t>(value));
      }
    }
    std::vector<std::uint8_t> down = row;
    std::vector<std::uint8_t> up = row;
    for (int x = 0, width = 1; x < 65536; x += width, width = std::min(width % 97 + 1, 65536 - x)) {
      premultiplyRow(down.data() + 4 * x, width);
      unpremultiplyRow(up.data() + 4 * x, width);
    }
    for (std::size_t i = 0; i < row.size(); ++i) {
      const int alpha = row[i | 3];
      const bool is_alpha = i % 4 == 3;
      ASSERT_EQ(down[i], is_alpha ? alpha : premultiplied(row[i], alpha)) << int{row[i]} << " of alpha " << alpha;
      ASSERT_EQ(up[i], is_alpha ? alpha : straight(row[i], alpha)) << int{row[i]} << " of alpha " << alpha;
    }
  }
}

TEST(Alpha, DeeperRowsAreMultipliedAndDividedByAlpha) {
  std::vector<std::uint16_t> words{65535, 3, 30000, 32768, 7, 8, 9, 0};
  premultiplyRow(words.data(), 2);
  EXPECT_EQ(words, (std::vector<std::uint16_t>{32768, 2, 15000, 32768, 0, 0, 0, 0}));
  unpremultiplyRow(words.data(), 2);
  EXPECT_EQ(words, (std::vector<std::uint16_t>{65535, 4, 30000, 32768, 0, 0, 0, 0}));
  std::vector<float> floats{2.0F, 0.5F, -1.0F, 0.25F, 1.0F, 2.0F, 3.0F, 1.0F};
  premultiplyRow(floats.data(), 2);
  EXPECT_EQ(floats, (std::vector<float>{0.5F, 0.125F, -0.25F, 0.25F, 1.0F, 2.0F, 3.0F, 1.0F}));
  unpremultiplyRow(floats.data(), 2);
  EXPECT_EQ(floats, (std::vector<float>{2.0F, 0.5F, -1.0F, 0.25F, 1.0F, 2.0F, 3.0F, 1.0F}));
}

TEST(Alpha, OnePixelChangesWhatARowsAlphasHaveInCommon) {
  for (int width = 1; width < 12; ++width) {
    for (int odd = 0; odd < width; ++odd) {
      std::vector<std::uint8_t> row(static_cast<std::size_t>(width) * 4, 255);
      EXPECT_EQ(alphaOfRow(row.data(), width), RowAlpha::Opaque);
      row[static_cast<std::size_t>(odd) * 4 + 3] = 254;
      EXPECT_EQ(alphaOfRow(row.data(), width), RowAlpha::Mixed);
      for (std::size_t i = 3; i < row.size(); i += 4) {
        row[i] = 0;
      }
      EXPECT_EQ(alphaOfRow(row.data(), width), RowAlpha::Transparent);
      row[static_cast<std::size_t>(odd) * 4 + 3] = 1;
      EXPECT_EQ(alphaOfRow(row.data(), width), RowAlpha::Mixed);
    }
  }
  const float floats[] = {0, 0, 0, 1, 5, 5, 5, 0};
  EXPECT_EQ(alphaOfRow(floats, 1), RowAlpha::Opaque);
  EXPECT_EQ(alphaOfRow(floats + 4, 1), RowAlpha::Transparent);
  EXPECT_EQ(alphaOfRow(floats, 2), RowAlpha::Mixed);
}

}  // namespace
}  // namespace vantorel::host
