// Memory for buffers as large as pictures.
#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace vantorel::cli {

// Is not cleared, and lies on large pages where the system has them: to touch it for the first time then takes a
// fraction of the time. Throws std::bad_alloc.
class LargeBuffer {
 public:
  LargeBuffer() = default;
  explicit LargeBuffer(std::size_t size)
      : bytes_(static_cast<std::uint8_t*>(::operator new[](size, std::align_val_t{kLargePage}))) {
    // Whole pages alone, so that a small buffer takes no more than it needs.
    if (size >= kLargePage) {
      static_cast<void>(madvise(bytes_.get(), size / kLargePage * kLargePage, MADV_HUGEPAGE));
    }
  }

  std::uint8_t* data() const { return bytes_.get(); }

 private:
  static constexpr std::size_t kLargePage = std::size_t{2} << 20;

  struct Free {
    void operator()(std::uint8_t* bytes) const { ::operator delete[](bytes, std::align_val_t{kLargePage}); }
  };

  std::unique_ptr<std::uint8_t[], Free> bytes_;
};

}  // namespace vantorel::cli
