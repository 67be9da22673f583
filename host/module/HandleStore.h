// The relocatable memory blocks (pointers to pointers) that a module allocates.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "support/PF_HostRecords.h"

namespace vantorel::host {

// Safe to use from several threads. Remaining blocks are freed with the store.
class HandleStore {
 public:
  // A zeroed block, or null when out of memory.
  PF_Handle allocate(std::uint64_t size) noexcept;

  // Frees a block. Does nothing and returns false for a handle that is not in this store. A null handle is ignored.
  bool release(PF_Handle handle) noexcept;

  std::size_t count() const;

 private:
  struct Block {
    std::unique_ptr<std::byte[]> memory;
    void* address = nullptr;  // what the handle points to
  };

  mutable std::mutex mutex_;
  std::map<PF_Handle, std::unique_ptr<Block>> blocks_;
};

}  // namespace vantorel::host
