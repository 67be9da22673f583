#include "tests/CountedAllocations.h"

#include <cstdlib>
#include <new>

namespace vantorel::testing {

std::atomic<long> allocations = 0;
std::atomic<long> blocks_held = 0;
std::atomic<long> allocations_left = kUnlimited;

namespace {

// Nothing where the allocation fails.
void* allocate(std::size_t size, std::size_t alignment = 0) {
  ++allocations;
  if (--allocations_left < 0) {
    return nullptr;
  }
  void* const memory = alignment == 0 ? std::malloc(size)
                                      : std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
  blocks_held += memory != nullptr ? 1 : 0;
  return memory;
}

void release(void* memory) {
  blocks_held -= memory != nullptr ? 1 : 0;
  std::free(memory);
}

void* orThrow(void* memory) {
  return memory != nullptr ? memory : throw std::bad_alloc();
}

}  // namespace
}  // namespace vantorel::testing

using vantorel::testing::allocate;
using vantorel::testing::orThrow;
using vantorel::testing::release;

__attribute__((noinline)) void* operator new(std::size_t size) {
  return orThrow(allocate(size));
}
__attribute__((noinline)) void* operator new(std::size_t size, std::align_val_t alignment) {
  return orThrow(allocate(size, static_cast<std::size_t>(alignment)));
}
__attribute__((noinline)) void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
__attribute__((noinline)) void operator delete(void* memory) noexcept {
  release(memory);
}
__attribute__((noinline)) void operator delete(void* memory, std::size_t) noexcept {
  release(memory);
}
__attribute__((noinline)) void operator delete(void* memory, std::align_val_t) noexcept {
  release(memory);
}
__attribute__((noinline)) void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
  release(memory);
}
