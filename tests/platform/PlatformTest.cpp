#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>

#include "platform/FixDiv.h"
#include "platform/Handles.h"

TEST(FixDiv, DividesRoundsAndSaturates) {
  struct {
    std::int32_t a, b, quotient;
  } const cases[] = {
      {196608, 131072, 98304},                                                         // 3 / 2
      {-196608, 131072, -98304}, {196608, -131072, -98304}, {1073741824, 1, INT_MAX},  // beyond the range at either end
      {-1073741824, 1, INT_MIN}, {INT_MIN, -1, INT_MAX},    {INT_MIN, 65536, INT_MIN}, {INT_MAX, 65536, INT_MAX},
      {1, INT_MIN, 0},           {5, 0, INT_MAX},           {-5, 0, INT_MIN},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(FixDiv(c.a, c.b), c.quotient) << c.a << " / " << c.b;
  }
  EXPECT_NEAR(FixDiv(65536, 3 * 65536), 21845.33, 0.67);  // at most one step from the true quotient
  EXPECT_NEAR(FixDiv(-65536, 3 * 65536), -21845.33, 0.67);
}

TEST(Handles, AreZeroedBlocksBehindAPointer) {
  void** const handle = NewHandle(8);
  ASSERT_NE(handle, nullptr);
  EXPECT_EQ(std::memcmp(*handle, "\0\0\0\0\0\0\0\0", 8), 0);
  std::memset(*handle, 0xFF, 8);
  DisposeHandle(handle);
  DisposeHandle(nullptr);
}
