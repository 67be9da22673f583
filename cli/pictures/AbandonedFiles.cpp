#include "cli/pictures/AbandonedFiles.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <unistd.h>

#include <atomic>
#include <map>
#include <mutex>
#include <random>
#include <string_view>
#include <system_error>

namespace vantorel::cli {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kMark = ".vantorel-";
constexpr std::string_view kExtension = ".tmp";

// What temporary names of that target begin with. A name may have 255 bytes in all.
std::string prefixOf(const fs::path& target) {
  return fmt::format(".{}{}", target.filename().string().substr(0, 200), kMark);
}

// The temporary files that are in a folder, by prefixOf their targets.
using FilesByPrefix = std::multimap<std::string, fs::path>;

FilesByPrefix temporaryFilesIn(const fs::path& folder) {
  FilesByPrefix files;
  std::error_code fault;
  for (fs::directory_iterator entry(folder, fault), end; !fault && entry != end; entry.increment(fault)) {
    const std::string name = entry->path().filename().string();
    const std::size_t mark = name.rfind(kMark);
    if (name.front() == '.' && mark != std::string::npos && entry->path().extension() == kExtension) {
      files.emplace(name.substr(0, mark + kMark.size()), entry->path());
    }
  }
  return files;
}

void removeUnlessLocked(const fs::path& file) {
  const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  if (descriptor < 0) {
    return;
  }
  if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
    unlink(file.c_str());
  }
  close(descriptor);
}

}  // namespace

fs::path folderOf(const fs::path& file) {
  return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

std::string temporaryName(const fs::path& target) {
  static std::atomic<unsigned> count{0};
  return (folderOf(target) /
          fmt::format("{}{:x}-{:x}-{}{}", prefixOf(target), getpid(), std::random_device{}(), count++, kExtension))
      .string();
}

void removeAbandoned(const fs::path& target) {
  static std::mutex mutex;
  static std::map<fs::path, FilesByPrefix> folders;
  const std::scoped_lock lock(mutex);
  const fs::path folder = folderOf(target);
  auto listed = folders.find(folder);
  if (listed == folders.end()) {
    listed = folders.emplace(folder, temporaryFilesIn(folder)).first;
  }
  const auto [begin, end] = listed->second.equal_range(prefixOf(target));
  for (auto file = begin; file != end; ++file) {
    removeUnlessLocked(file->second);
  }
  listed->second.erase(begin, end);
}

}  // namespace vantorel::cli
