#include "cli/base/StandardStreams.h"

#include <fmt/format.h>
#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>
#include <system_error>

#include "cli/base/CommandError.h"

namespace vantorel::cli {

namespace {

constexpr const char* kInputName = "standard input";
constexpr const char* kOutputName = "standard output";
constexpr std::size_t kBlock = std::size_t{1} << 16;

// What has been read from standard input. Global, like standard input itself.
std::unique_ptr<UnnamedFile>& readInput() {
  static std::unique_ptr<UnnamedFile> file;
  return file;
}

std::string reasonOf(int fault) {
  return std::generic_category().message(fault);
}

// Writes all bytes; on failure returns false with errno set.
bool writeAll(int descriptor, const char* bytes, std::size_t count) {
  while (count > 0) {
    const ssize_t written = write(descriptor, bytes, count);
    if (written < 0 && errno != EINTR) {
      return false;
    }
    const auto done = static_cast<std::size_t>(written < 0 ? 0 : written);
    bytes += done;
    count -= done;
  }
  return true;
}

// Waits until there is something to read, polling the stop token, so that a silent producer does not delay an
// interruption.
void waitForInput(const std::stop_token& stop) {
  constexpr int kPause = 50;
  pollfd input{STDIN_FILENO, POLLIN, 0};
  while (poll(&input, 1, kPause) == 0) {
    if (stop.stop_requested()) {
      throw interrupted();
    }
  }
}

}  // namespace

std::string inputName(const std::string& path) {
  return isStandardStream(path) ? kInputName : path;
}

std::string outputName(const std::string& path) {
  return isStandardStream(path) ? kOutputName : path;
}

UnnamedFile::UnnamedFile(const std::string& user) : descriptor_(memfd_create("vantorel", MFD_CLOEXEC)) {
  if (descriptor_ < 0) {
    throw fileFailure(user, fmt::format("cannot be kept in memory ({}); use a file", reasonOf(errno)));
  }
}

UnnamedFile::~UnnamedFile() {
  close(descriptor_);
}

std::string UnnamedFile::path() const {
  return fmt::format("/proc/self/fd/{}", descriptor_);
}

void readStandardInput(const std::string& wanted, const std::stop_token& stop) {
  if (readInput()) {
    return;
  }
  if (isatty(STDIN_FILENO) != 0) {
    throw fileFailure(kInputName, fmt::format("is a terminal; send {} through a pipe", wanted));
  }
  auto file = std::make_unique<UnnamedFile>(kInputName);
  std::array<char, kBlock> block{};
  std::size_t total = 0;
  while (true) {
    waitForInput(stop);
    const ssize_t count = read(STDIN_FILENO, block.data(), block.size());
    if (count == 0) {
      break;
    }
    if (count < 0 && errno != EINTR) {
      throw fileFailure(kInputName, fmt::format("cannot be read ({}); check the pipe", reasonOf(errno)));
    }
    const auto size = static_cast<std::size_t>(count < 0 ? 0 : count);
    if (!writeAll(file->descriptor(), block.data(), size)) {
      throw fileFailure(kInputName, fmt::format("cannot be kept in memory ({}); use a file", reasonOf(errno)));
    }
    total += size;
  }
  if (total == 0) {
    throw fileFailure(kInputName, fmt::format("is empty; send {} through the pipe", wanted));
  }
  readInput() = std::move(file);
}

std::string openablePath(const std::string& path) {
  return isStandardStream(path) && readInput() ? readInput()->path() : path;
}

void writeToStandardOutput(int descriptor) {
  std::array<char, kBlock> block{};
  off_t at = 0;
  ssize_t count = 0;
  while ((count = pread(descriptor, block.data(), block.size(), at)) > 0) {
    if (!writeAll(STDOUT_FILENO, block.data(), static_cast<std::size_t>(count))) {
      throw fileFailure(kOutputName, fmt::format("cannot be written to ({}); check the program or the disk that it "
                                                 "goes to",
                                                 reasonOf(errno)));
    }
    at += count;
  }
}

}  // namespace vantorel::cli
