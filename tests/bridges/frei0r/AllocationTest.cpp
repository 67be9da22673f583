// What the filter allocates: nothing after an instance's first frame of a kind, whatever its corners.
#include <atomic>
#include <cstdlib>
#include <new>

#include "tests/bridges/frei0r/PluginTesting.h"

namespace {
std::atomic<long> allocations = 0;
}  // namespace

// The filter's own calls come here too, since the program's functions precede those of the libraries that it loads.
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
__attribute__((noinline)) void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++allocations;
  return std::malloc(size);
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

namespace vantorel::frei0r {
namespace {

TEST(Frei0rAllocation, FramesAfterTheFirstAllocateNothing) {
  const Plugin plugin;
  for (const char* quality : {"standard", "high", "best"}) {
    for (const std::uint32_t alpha : {0xFF000000u, 0x80000000u}) {
      const Pixels layer(std::size_t{96} * 64, alpha | 0x00204060u);
      Pixels out(layer.size());
      const long at_first = allocations;
      Instance instance(plugin, {96, 64});
      instance.setQuality(quality);
      instance.update(layer.data(), out.data());
      EXPECT_GT(allocations, at_first) << "the filter's allocations are not counted";
      const long before = allocations;
      for (int frame = 1; frame < 5; ++frame) {
        instance.setNumber(0, 0.3 + 0.01 * frame);
        instance.setNumber(9, 1.0 - 0.1 * frame);
        instance.update(layer.data(), out.data());
      }
      EXPECT_EQ(allocations, before) << quality << " alpha " << alpha;
    }
  }
}

}  // namespace
}  // namespace vantorel::frei0r
