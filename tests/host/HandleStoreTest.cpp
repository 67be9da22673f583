#include "host/module/HandleStore.h"

#include <cstring>

#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

TEST(HandleStoreTest, GivesZeroedBlocksThroughHandlesAndKnowsItsOwn) {
  HandleStore store;
  const PF_Handle handle = store.allocate(8);
  ASSERT_NE(nullptr, handle);
  EXPECT_EQ(0, std::memcmp(*handle, "\0\0\0\0\0\0\0\0", 8));
  void* stranger = nullptr;
  EXPECT_FALSE(store.release(&stranger));
  EXPECT_EQ(nullptr, store.allocate(~std::uint64_t{0}));
  EXPECT_TRUE(store.release(handle));
  EXPECT_FALSE(store.release(handle));
  EXPECT_TRUE(store.release(nullptr));
  EXPECT_EQ(0u, store.count());
}

}  // namespace
}  // namespace vantorel::host
