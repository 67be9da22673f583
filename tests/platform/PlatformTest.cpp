#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/ClearPixels.h"
#include "platform/Cpu.h"
#include "platform/FixDiv.h"
#include "platform/Handles.h"

TEST(FixDiv, DividesRoundsAndSaturates) {
  const int cases[][3] = {{196608, 131072, 98304},   {-196608, 131072, -98304}, {196608, -131072, -98304},
                          {1073741824, 1, INT_MAX},  {-1073741824, 1, INT_MIN}, {INT_MIN, -1, INT_MAX},
                          {INT_MIN, 65536, INT_MIN}, {INT_MAX, 65536, INT_MAX}, {1, INT_MIN, 0},
                          {2, 3 * 65536, 1},         {-2, 3 * 65536, -1},       {5, 0, INT_MAX},
                          {-5, 0, INT_MIN}};
  for (const auto& c : cases) {
    EXPECT_EQ(FixDiv(c[0], c[1]), c[2]) << c[0] << " / " << c[1];
  }
}

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

TEST(Handles, AreZeroedBlocksBehindAPointer) {
  void** const handle = NewHandle(8);
  ASSERT_NE(handle, nullptr);
  EXPECT_EQ(std::memcmp(*handle, "\0\0\0\0\0\0\0\0", 8), 0);
  DisposeHandle(handle);
  DisposeHandle(nullptr);
}

TEST(Cpu, SetsAreListedFoundAndForcedByName) {
  for (const InstructionSet set : kInstructionSets) {
    InstructionSet found = set == InstructionSet::Scalar ? InstructionSet::Avx2 : InstructionSet::Scalar;
    EXPECT_TRUE(findInstructionSet(instructionSetName(set), &found));
    EXPECT_EQ(found, set);
    EXPECT_FALSE(findInstructionSet("avx", &found));
    EXPECT_EQ(found, set);
  }
  EXPECT_TRUE(isAvailable(InstructionSet::Scalar));
  InstructionSet expected = InstructionSet::Scalar;  // the last available, unless the environment names another
  for (const InstructionSet set : kInstructionSets) {
    expected = isAvailable(set) ? set : expected;
  }
  InstructionSet forced = expected;
  const char* const name = std::getenv(kSimdVariable);
  if (name != nullptr && findInstructionSet(name, &forced) && isAvailable(forced)) {
    expected = forced;
  }
  EXPECT_EQ(activeInstructionSet(), expected);
}
