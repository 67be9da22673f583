#include "bench/Cpu.h"

#include <sched.h>
#include <tbb/parallel_for.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace vantorel::bench {

namespace {

std::vector<std::size_t> processors;

// A thread that has ended in the meantime makes the call fail, which does not matter.
void keepOn(pid_t thread, const std::vector<std::size_t>& chosen) {
  cpu_set_t set;
  CPU_ZERO(&set);
  for (const std::size_t processor : chosen) {
    CPU_SET(processor, &set);
  }
  sched_setaffinity(thread, sizeof set, &set);
}

}  // namespace

void rememberProcessors() {
  cpu_set_t allowed;
  if (sched_getaffinity(0, sizeof allowed, &allowed) != 0) {
    throw std::runtime_error("the processors to run on could not be read");
  }
  for (std::size_t i = 0; i < CPU_SETSIZE; ++i) {
    if (CPU_ISSET(i, &allowed)) {
      processors.push_back(i);
    }
  }
  tbb::parallel_for(0, 1000, [](int) {});
}

int processorCount() {
  return static_cast<int>(processors.size());
}

void pinTo(int threads) {
  const std::vector<std::size_t> own{processors.back()};
  const auto others_end = processors.end() - 1;
  const auto count = std::min<std::ptrdiff_t>(threads - 1, others_end - processors.begin());
  const std::vector<std::size_t> others = count > 0 ? std::vector<std::size_t>(others_end - count, others_end) : own;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) {
    const auto thread = static_cast<pid_t>(std::stol(entry.path().filename().string()));
    keepOn(thread, thread == getpid() ? own : others);
  }
}

}  // namespace vantorel::bench
