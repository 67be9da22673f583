#include "host/module/HandleStore.h"

#include <algorithm>
#include <limits>
#include <new>

namespace vantorel::host {

PF_Handle HandleStore::allocate(std::uint64_t size) noexcept {
  if (size > std::uint64_t{std::numeric_limits<std::ptrdiff_t>::max()}) {
    return nullptr;
  }
  try {
    auto block = std::make_unique<Block>();
    block->memory = std::make_unique<std::byte[]>(std::max<std::size_t>(size, 1));
    block->address = block->memory.get();
    const PF_Handle handle = &block->address;
    const std::lock_guard lock(mutex_);
    blocks_.emplace(handle, std::move(block));
    return handle;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

bool HandleStore::release(PF_Handle handle) noexcept {
  const std::lock_guard lock(mutex_);
  return handle == nullptr || blocks_.erase(handle) == 1;
}

std::size_t HandleStore::count() const {
  const std::lock_guard lock(mutex_);
  return blocks_.size();
}

}  // namespace vantorel::host
