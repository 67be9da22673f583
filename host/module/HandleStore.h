// The relocatable blocks that a module allocates: pointers to pointers to memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "support/PF_HostRecords.h"

namespace vantorel::host {

// Safe to use from several threads. Blocks that are left are freed with the store.
class HandleStore {
 public:
  // A zeroed block, or null when there is no memory for it.
  PF_Handle allocate(std::uint64_t size) noexcept;

  // Frees a block; false, and nothing is done, for a handle that is not of this store's. Null frees nothing.
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
