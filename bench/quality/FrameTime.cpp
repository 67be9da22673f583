#include "bench/quality/FrameTime.h"

#include <algorithm>
#include <ctime>
#include <numeric>
#include <vector>

namespace vantorel::quality {

namespace {

// Processor time of this process, so that other programs do not count.
double processorSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double secondsOnce(const Frame& frame) {
  const double start = processorSeconds();
  frame.draw();
  return processorSeconds() - start;
}

}  // namespace

double drawingSeconds(const Frame& frame) {
  constexpr double kSlow = 2.0;
  constexpr double kSeconds = 0.5;
  constexpr std::size_t kFewest = 3;
  if (const double first = secondsOnce(frame); first > kSlow) {
    return first;
  }
  std::vector<double> times;
  while (times.size() < kFewest || std::accumulate(times.begin(), times.end(), 0.0) < kSeconds) {
    times.push_back(secondsOnce(frame));
  }
  const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
  std::nth_element(times.begin(), middle, times.end());
  return *middle;
}

}  // namespace vantorel::quality
