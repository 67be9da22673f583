// Preloaded into the command: lets one call that touches files fail. VANTOREL_FAULT="fsync:2" names the function and
// which of its calls fails, with the error of a broken disk. The number of each function's calls is appended to
// the file that VANTOREL_FAULT_COUNTS names, a line for each.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

enum Function { kOpen, kWrite, kFopen, kFwrite, kFflush, kFclose, kFsync, kRename, kFunctions };
constexpr std::array<const char*, kFunctions> kNames{"open",   "write",  "fopen", "fwrite",
                                                     "fflush", "fclose", "fsync", "rename"};

std::array<std::atomic<int>, kFunctions> calls{};

// Whether this call of the function is the one to fail; sets errno if so.
bool fails(Function function) {
  const int number = ++calls[function];
  const char* const fault = std::getenv("VANTOREL_FAULT");
  const std::size_t length = std::strlen(kNames[function]);
  if (fault == nullptr || std::strncmp(fault, kNames[function], length) != 0 || fault[length] != ':' ||
      std::atoi(fault + length + 1) != number) {
    return false;
  }
  errno = EIO;
  return true;
}

template <typename Type>
Type* next(const char* name) {
  return reinterpret_cast<Type*>(dlsym(RTLD_NEXT, name));
}

// The system's own files are not the command's.
bool isOwnFile(std::string_view path) {
  for (const std::string_view system : {"/proc", "/sys", "/etc", "/usr", "/lib", "/dev"}) {
    if (path.substr(0, system.size()) == system) {
      return false;
    }
  }
  return true;
}

bool isRegularFile(int descriptor) {
  struct stat status {};
  return descriptor > 2 && fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

// Standard streams are not files, and whether one that was read closes is nobody's matter.
bool isOwnStream(FILE* stream) {
  return stream != nullptr && fileno(stream) > 2 && (fcntl(fileno(stream), F_GETFL) & O_ACCMODE) != O_RDONLY;
}

// As the system's own does: who looks at the stream later is told too.
bool failsOn(FILE* stream, Function function) {
  constexpr int kErrorSeen = 0x20;
  if (!isOwnStream(stream) || !fails(function)) {
    return false;
  }
  stream->_flags |= kErrorSeen;
  return true;
}

struct Counts {
  ~Counts() {
    if (const char* const path = std::getenv("VANTOREL_FAULT_COUNTS")) {
      FILE* const file = next<FILE*(const char*, const char*)>("fopen")(path, "w");
      for (int function = 0; function < kFunctions; ++function) {
        std::fprintf(file, "%s %d\n", kNames[static_cast<std::size_t>(function)],
                     calls[static_cast<std::size_t>(function)].load());
      }
      next<int(FILE*)>("fclose")(file);
    }
  }
} counts;

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? static_cast<mode_t>(va_arg(arguments, unsigned)) : 0;
  va_end(arguments);
  return (flags & O_CREAT) != 0 && fails(kOpen) ? -1 : next<int(const char*, int, ...)>("open")(path, flags, mode);
}

FILE* fopen(const char* path, const char* mode) {
  return isOwnFile(path) && fails(kFopen) ? nullptr : next<FILE*(const char*, const char*)>("fopen")(path, mode);
}

FILE* fopen64(const char* path, const char* mode) {
  return fopen(path, mode);
}

std::size_t fwrite(const void* data, std::size_t size, std::size_t count, FILE* stream) {
  return failsOn(stream, kFwrite)
             ? 0
             : next<std::size_t(const void*, std::size_t, std::size_t, FILE*)>("fwrite")(data, size, count, stream);
}

int fflush(FILE* stream) {
  return failsOn(stream, kFflush) ? EOF : next<int(FILE*)>("fflush")(stream);
}

int fclose(FILE* stream) {
  const bool failing = isOwnStream(stream) && fails(kFclose);
  const int result = next<int(FILE*)>("fclose")(stream);
  errno = failing ? EIO : errno;
  return failing ? EOF : result;
}

ssize_t write(int descriptor, const void* data, std::size_t size) {
  return isRegularFile(descriptor) && fails(kWrite)
             ? -1
             : next<ssize_t(int, const void*, std::size_t)>("write")(descriptor, data, size);
}

int fsync(int descriptor) {
  return fails(kFsync) ? -1 : next<int(int)>("fsync")(descriptor);
}

int rename(const char* from, const char* to) noexcept {
  return fails(kRename) ? -1 : next<int(const char*, const char*)>("rename")(from, to);
}
}
