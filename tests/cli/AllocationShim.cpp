// Preloaded into the command: lets one allocation fail. VANTOREL_FAILING_ALLOCATION="17" names which, counted from the
// start of main, where the command sets the allocator up; the calls that led to it are written to the file that
// VANTOREL_FAILING_STACK names, a line each. VANTOREL_ALLOCATION_PLACES names a file for the places at which anything
// is allocated: a line each, of the place, which is a hash of the calls that lead to it, and its first allocation.
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <unistd.h>
#include <unwind.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
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

// Innermost first. Behind them, who called matters no longer.
struct Stack {
  static constexpr int kDepth = 16;
  std::array<void*, kDepth> calls;
  int count = 0;
};

Stack stackHere() {
  Stack stack;
  const auto take = [](_Unwind_Context* context, void* into) {
    Stack& found = *static_cast<Stack*>(into);
    if (found.count == Stack::kDepth) {
      return _URC_END_OF_STACK;
    }
    found.calls[static_cast<std::size_t>(found.count++)] = reinterpret_cast<void*>(_Unwind_GetIP(context));
    return _URC_NO_REASON;
  };
  _Unwind_Backtrace(take, &stack);
  return stack;
}

// Where a call is, the same in every process: its file, and the place in it.
struct Call {
  const char* file = "?";
  std::uint64_t offset = 0;
};

Call callAt(void* address) {
  dl_find_object object{};
  if (_dl_find_object(address, &object) != 0) {
    return {};
  }
  return {object.dlfo_link_map->l_name,
          static_cast<std::uint64_t>(static_cast<char*>(address) - static_cast<char*>(object.dlfo_map_start))};
}

// Fowler, Noll and Vo's hash.
std::uint64_t placeOf(const Stack& stack) {
  std::uint64_t hash = 14695981039346656037u;
  const auto add = [&](std::uint64_t value) { hash = (hash ^ value) * 1099511628211u; };
  for (int i = 0; i < stack.count; ++i) {
    const Call call = callAt(stack.calls[static_cast<std::size_t>(i)]);
    for (const char* letter = call.file; *letter != '\0'; ++letter) {
      add(static_cast<unsigned char>(*letter));
    }
    add(call.offset);
  }
  return hash | 1;
}

// Places by their hash; 0 is a free one.
class Places {
 public:
  void add(std::uint64_t place, long number) {
    while (busy_.test_and_set(std::memory_order_acquire)) {
    }
    std::size_t at = place % kSize;
    while (entries_[at].place != 0 && entries_[at].place != place) {
      at = (at + 1) % kSize;
    }
    if (entries_[at].place == 0) {
      entries_[at] = {place, number};
    }
    busy_.clear(std::memory_order_release);
  }

  void write(const char* path) const {
    FILE* const file = std::fopen(path, "w");
    for (const Entry& entry : entries_) {
      if (entry.place != 0) {
        std::fprintf(file, "%016llx %ld\n", static_cast<unsigned long long>(entry.place), entry.number);
      }
    }
    std::fclose(file);
  }

 private:
  static constexpr std::size_t kSize = 1 << 18;
  struct Entry {
    std::uint64_t place;
    long number;
  };
  std::array<Entry, kSize> entries_{};
  std::atomic_flag busy_;
};

std::atomic<bool> counting = false;
std::atomic<long> allocations = 0;
long failing = 0;
const char* places_path = nullptr;
Places places;

void writeStack(const char* path) {
  const Stack stack = stackHere();
  const int file = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  dprintf(file, "%016llx\n", static_cast<unsigned long long>(placeOf(stack)));
  for (int i = 0; i < stack.count; ++i) {
    const Call call = callAt(stack.calls[static_cast<std::size_t>(i)]);
    dprintf(file, "%s+0x%llx\n", call.file, static_cast<unsigned long long>(call.offset));
  }
  close(file);
}

bool fails() {
  if (!counting) {
    return false;
  }
  const long number = ++allocations;
  if (places_path != nullptr) {
    places.add(placeOf(stackHere()), number);
  }
  if (number != failing) {
    return false;
  }
  if (const char* const path = std::getenv("VANTOREL_FAILING_STACK")) {
    writeStack(path);
  }
  errno = ENOMEM;
  return true;
}

struct AtExit {
  ~AtExit() {
    counting = false;
    if (places_path != nullptr) {
      places.write(places_path);
    }
  }
} at_exit;

}  // namespace

extern "C" {

int mallopt(int parameter, int value) noexcept {
  const char* const number = std::getenv("VANTOREL_FAILING_ALLOCATION");
  failing = number != nullptr ? std::atol(number) : 0;
  places_path = std::getenv("VANTOREL_ALLOCATION_PLACES");
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
