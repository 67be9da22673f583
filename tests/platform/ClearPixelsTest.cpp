#include "platform/ClearPixels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <vector>

TEST(clearPixels, ClearsJustTheBytesAskedFor) {
  for (const StorePolicy policy : {StorePolicy::Cached, StorePolicy::NonTemporal}) {
    for (const std::size_t count : {0u, 4u, 1020u, 1024u, 1100u, 30720u}) {
      for (const std::size_t offset : {0u, 4u, 60u}) {
        std::vector<std::byte> bytes(31000, std::byte{1});
        clearBytes(bytes.data() + offset, count, policy);
        const auto end = bytes.begin() + static_cast<std::ptrdiff_t>(offset + count);
        EXPECT_EQ(std::count(bytes.begin(), end, std::byte{1}), static_cast<std::ptrdiff_t>(offset));
        EXPECT_EQ(std::count(end, bytes.end(), std::byte{0}), 0);
      }
    }
  }
}
