#include "cli/base/Console.h"

#include "cli/base/CommandError.h"

#include <fcntl.h>
#include <unistd.h>

#include <mutex>

namespace vantorel::cli {

namespace {

std::mutex mutex;
int living = 0;

void sendStandardErrorTo(int descriptor) {
  std::fflush(stderr);
  dup2(descriptor, STDERR_FILENO);
}

}  // namespace

std::FILE* console() {
  static std::FILE* const kStream = [] {
    const int copy = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    std::FILE* const opened = copy >= 0 ? fdopen(copy, "w") : nullptr;
    if (opened == nullptr) {
      return stderr;
    }
    std::setvbuf(opened, nullptr, _IONBF, 0);
    return opened;
  }();
  return kStream;
}

LibraryMessagesDropped::LibraryMessagesDropped() {
  const std::scoped_lock lock(mutex);
  if (living++ > 0 || console() == stderr) {
    return;
  }
  if (const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC); nowhere >= 0) {
    sendStandardErrorTo(nowhere);
    close(nowhere);
  }
}

LibraryMessagesDropped::~LibraryMessagesDropped() {
  const std::scoped_lock lock(mutex);
  if (--living == 0 && console() != stderr) {
    sendStandardErrorTo(fileno(console()));
  }
}

void printOut(const std::string& text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
    throw fileFailure("standard output", "cannot be written to; check the pipe or the disk that it goes to");
  }
}

}  // namespace vantorel::cli
