#include "bridges/ofx/Half.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vantorel::ofx {
namespace {

TEST(OfxHalfTest, GoesToFloatAndBackAndRoundsToTheNearest) {
  for (unsigned bits = 0; bits < 0x10000; ++bits) {
    const auto half = static_cast<std::uint16_t>(bits);
    const float value = floatFromHalf(half);
    if (std::isnan(value)) {
      EXPECT_TRUE(std::isnan(floatFromHalf(halfFromFloat(value))));
      continue;
    }
    EXPECT_EQ(halfFromFloat(value), half);
    const float next = floatFromHalf(static_cast<std::uint16_t>(half + 1));
    if (std::isfinite(value) && std::isfinite(next) && (half & 0x7FFF) != 0x7FFF) {
      const float middle = value + (next - value) / 2.0F;
      EXPECT_EQ(halfFromFloat(middle), half % 2 == 0 ? half : half + 1) << bits;
      EXPECT_EQ(halfFromFloat(std::nextafter(middle, value)), half) << bits;
    }
  }
  EXPECT_EQ(floatFromHalf(0x3C00), 1.0F);
  EXPECT_EQ(floatFromHalf(0x0001), 0x1p-24F);
  EXPECT_EQ(halfFromFloat(70000.0F), 0x7C00);
}

}  // namespace
}  // namespace vantorel::ofx
