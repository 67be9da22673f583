#include "cli/pictures/CodecThreads.h"

#include <OpenEXR/ImfThreading.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>

namespace vantorel::cli {

namespace {

std::atomic<unsigned> limit{0};  // 0: none

}  // namespace

void limitCodecThreads(unsigned threads, bool one_picture_at_a_time) {
  limit = one_picture_at_a_time ? std::max(1u, threads) : 1u;
}

std::optional<unsigned> codecThreads() {
  const unsigned threads = limit;
  return threads == 0 ? std::nullopt : std::optional(threads);
}

void startOpenExrThreads() {
  static std::mutex mutex;
  const std::scoped_lock lock(mutex);
  const unsigned threads = codecThreads().value_or(std::thread::hardware_concurrency());
  // OpenEXR counts only the threads that it starts itself, not the caller's.
  const int own = threads > 1 ? static_cast<int>(threads) : 0;
  if (Imf::globalThreadCount() != own) {
    Imf::setGlobalThreadCount(own);
  }
}

}  // namespace vantorel::cli
