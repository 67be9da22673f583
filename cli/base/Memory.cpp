#include "cli/base/Memory.h"

#include <fmt/format.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>

namespace vantorel::cli {

namespace {

std::optional<std::uint64_t> availableOnMachine() {
  std::ifstream file("/proc/meminfo");
  std::string key;
  std::uint64_t kibibytes = 0;
  std::string unit;
  while (file >> key >> kibibytes) {
    if (key == "MemAvailable:") {
      return kibibytes * 1024;
    }
    std::getline(file, unit);
  }
  return std::nullopt;
}

std::optional<std::uint64_t> numberIn(const std::string& path) {
  std::ifstream file(path);
  std::uint64_t value = 0;
  if (file >> value) {
    return value;
  }
  return std::nullopt;
}

// Cached files are counted as used memory, but the kernel frees them when needed.
std::uint64_t cachedFiles(const std::string& statistics_path) {
  std::ifstream file(statistics_path);
  std::uint64_t cached = 0;
  std::string key;
  for (std::uint64_t value = 0; file >> key >> value;) {
    if (key == "inactive_file" || key == "active_file") {
      cached += value;
    }
  }
  return cached;
}

std::optional<std::uint64_t> availableInGroup(const std::string& folder, const char* limit_name,
                                              const char* usage_name) {
  const auto limit = numberIn(folder + limit_name);
  const auto usage = numberIn(folder + usage_name);
  if (!limit || !usage) {
    return std::nullopt;
  }
  const std::uint64_t cached = std::min(*usage, cachedFiles(folder + "/memory.stat"));
  return *limit > *usage - cached ? *limit - (*usage - cached) : 0;
}

// The folder of this process's control group in the unified hierarchy.
std::string ownGroupFolder() {
  std::ifstream file("/proc/self/cgroup");
  std::string line;
  while (std::getline(file, line)) {
    if (line.rfind("0::", 0) == 0) {
      return "/sys/fs/cgroup" + line.substr(3);
    }
  }
  return "/sys/fs/cgroup";
}

std::string memoryText(double bytes) {
  constexpr std::array kUnits{"bytes", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
  std::size_t unit = 0;
  for (; bytes >= 1024.0 && unit + 1 < kUnits.size(); ++unit) {
    bytes /= 1024.0;
  }
  return fmt::format("{:.1f} {}", bytes, kUnits[unit]);
}

}  // namespace

std::optional<double> availableMemory() {
  const std::optional<std::uint64_t> limits[] = {
      availableOnMachine(),
      availableInGroup(ownGroupFolder(), "/memory.max", "/memory.current"),
      availableInGroup("/sys/fs/cgroup/memory", "/memory.limit_in_bytes", "/memory.usage_in_bytes"),
  };
  std::optional<double> least;
  for (const auto& limit : limits) {
    if (limit && (!least || static_cast<double>(*limit) < *least)) {
      least = static_cast<double>(*limit);
    }
  }
  return least;
}

double pictureBytes(host::Size size, host::Depth depth) {
  return static_cast<double>(size.width) * size.height * static_cast<double>(host::bytesPerPixel(depth));
}

std::optional<std::string> memoryShortage(double bytes) {
  constexpr double kShareToTake = 0.9;
  const std::optional<double> available = availableMemory();
  if (!available || bytes <= *available * kShareToTake) {
    return std::nullopt;
  }
  return fmt::format("needs {} of memory and {} are free", memoryText(bytes), memoryText(*available));
}

void keepFreedMemory() {
  constexpr int kLargest = 32 << 20;  // the C library's upper limit
  mallopt(M_MMAP_THRESHOLD, kLargest);
  mallopt(M_TRIM_THRESHOLD, 4 * kLargest);
}

}  // namespace vantorel::cli
