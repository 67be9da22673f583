#include "tests/CountedAllocations.h"

#include <cstdlib>
#include <new>

namespace vantorel::testing {

std::atomic<long> allocations = 0;
std::atomic<long> allocations_left = kUnlimited;

namespace {

// Nothing where the allocation fails.
void* allocate(std::size_t size, std::size_t alignment = 0) {
  ++allocations;
  if (--allocations_left < 0) {
    return nullptr;
  }
  return alignment == 0 ? std::malloc(size)
                        : std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
}

void* orThrow(void* memory) {
  return memory != nullptr ? memory : throw std::bad_alloc();
}

}  // namespace
}  // namespace vantorel::testing

using vantorel::testing::allocate;
using vantorel::testing::orThrow;

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
