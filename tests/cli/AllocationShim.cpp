// Preloaded into the command: lets one allocation fail. VANTOREL_FAILING_ALLOCATION="17" names which, counted from the
// start of main, where the command sets the allocator up. The number of allocations is written to the file that
// VANTOREL_ALLOCATION_COUNT names.
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

// The system's own, under the names by which they stay reachable.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
int __libc_mallopt(int parameter, int value);
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

namespace {

std::atomic<bool> counting = false;
std::atomic<long> calls = 0;
long failing = 0;

bool fails() {
  if (!counting || ++calls != failing) {
    return false;
  }
  errno = ENOMEM;
  return true;
}

struct Count {
  ~Count() {
    counting = false;
    if (const char* const path = std::getenv("VANTOREL_ALLOCATION_COUNT")) {
      FILE* const file = std::fopen(path, "w");
      std::fprintf(file, "%ld\n", calls.load());
      std::fclose(file);
    }
  }
} count;

}  // namespace

extern "C" {

int mallopt(int parameter, int value) noexcept {
  const char* const number = std::getenv("VANTOREL_FAILING_ALLOCATION");
  failing = number != nullptr ? std::atol(number) : 0;
  counting = true;
  return __libc_mallopt(parameter, value);
}

void* malloc(std::size_t size) noexcept {
  return fails() ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) noexcept {
  return fails() ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) noexcept {
  return fails() ? nullptr : __libc_realloc(memory, size);
}

void* memalign(std::size_t alignment, std::size_t size) noexcept {
  return fails() ? nullptr : __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
  return memalign(alignment, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) noexcept {
  *memory = memalign(alignment, size);
  return *memory == nullptr ? ENOMEM : 0;
}
}
