// After an instance's first frame of a size the host allocates nothing: a player does not stutter.
#include <atomic>
#include <cstdlib>
#include <new>

#include "tests/host/HostTesting.h"

namespace {

std::atomic<long> allocations = 0;

}  // namespace

__attribute__((noinline)) void* operator new(std::size_t size) {
  ++allocations;
  if (void* const memory = std::malloc(size)) {
    return memory;
  }
  throw std::bad_alloc();
}
__attribute__((noinline)) void* operator new(std::size_t size, std::align_val_t alignment) {
  ++allocations;
  const auto align = static_cast<std::size_t>(alignment);
  if (void* const memory = std::aligned_alloc(align, (size + align - 1) / align * align)) {
    return memory;
  }
  throw std::bad_alloc();
}
__attribute__((noinline)) void operator delete(void* memory) noexcept {
  std::free(memory);
}
__attribute__((noinline)) void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
__attribute__((noinline)) void operator delete(void* memory, std::align_val_t) noexcept {
  std::free(memory);
}
__attribute__((noinline)) void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
  std::free(memory);
}

namespace vantorel::host {
namespace {

TEST(AllocationTest, AFrameAfterTheFirstAllocatesNothing) {
  const auto module = testing::loadModule("vantorel");
  for (const Depth depth : testing::kDepths) {
    Image layer = testing::noise({64, 48}, depth);
    Image output = testing::dirty({64, 48}, depth);
    const Corners quads[] = {{{3, 2}, {60, 5}, {1, 44}, {57, 40}}, {{3, 2}, {60, 5}, {1, 44}, {20, 12}}};
    for (const Corners& quad : quads) {
      for (const auto& [protocol, quality] :
           {std::pair(Protocol::Smart, Quality::High), std::pair(Protocol::Plain, Quality::High),
            std::pair(Protocol::Smart, Quality::Best)}) {
        Instance instance = testing::instanceWith(module, quad);
        double share = 0;
        FrameOptions options{.quality = quality, .protocol = protocol, .progress = [&](double s) { share = s; }};
        ASSERT_TRUE(instance.render(asConst(layer.view()), {0, 0, 64, 48}, output.view(), options));
        const long before = allocations;
        for (int frame = 1; frame < 4; ++frame) {
          options.time.time = frame;
          ASSERT_TRUE(instance.render(asConst(layer.view()), {0, 0, 64, 48}, output.view(), options));
        }
        EXPECT_EQ(before, allocations);
      }
    }
  }
}

}  // namespace
}  // namespace vantorel::host
