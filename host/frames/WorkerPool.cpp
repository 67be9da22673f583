#include "host/frames/WorkerPool.h"

#include <algorithm>
#include <exception>

namespace vantorel::host {

namespace {

// Waits for what is likely to happen within microseconds, such as the next of many small frames: to sleep and to be
// woken would take longer than such a frame.
template <typename Condition>
void waitBriefly(Condition condition) {
  constexpr int kTries = 100;
  for (int i = 0; i < kTries && !condition(); ++i) {
    std::this_thread::yield();
  }
}

}  // namespace

// Ranges of several rows keep a thread on neighbouring ones; they end with single rows, so that all threads finish at
// the same time.
void WorkerPool::Job::work() {
  std::int32_t begin = top.load(std::memory_order_relaxed);
  while (begin < bottom) {
    const std::int64_t left_over = std::int64_t{bottom} - begin;
    const auto count = static_cast<std::int32_t>(std::clamp<std::int64_t>(left_over / (2 * sharers), 1, max_count));
    if (top.compare_exchange_weak(begin, begin + count, std::memory_order_relaxed)) {
      function.run(function.data, begin, begin + count);
      begin = top.load(std::memory_order_relaxed);
    }
  }
}

WorkerPool::WorkerPool() : max_threads_(std::max(std::thread::hardware_concurrency(), 1u)) {}

WorkerPool::~WorkerPool() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  wake_.notify_all();
  for (std::thread& worker : workers_) {
    worker.join();
  }
}

void WorkerPool::run(std::int32_t top, std::int32_t bottom, unsigned threads, const RowRangeFunction& function) {
  const unsigned sharers = threads == 0 ? max_threads_ : std::min(threads, max_threads_);
  if (sharers == 1) {
    function.run(function.data, top, bottom);
    return;
  }
  // Short enough that a few costly rows amid cheap ones are shared too.
  constexpr std::int64_t kRangesPerThread = 16;
  const std::int64_t max_count = (std::int64_t{bottom} - top) / (kRangesPerThread * sharers);
  Job job{.function = function,
          .bottom = bottom,
          .sharers = static_cast<std::int32_t>(sharers),
          .max_count = static_cast<std::int32_t>(std::max<std::int64_t>(max_count, 1)),
          .top = top,
          .wanted = sharers - 1};
  {
    const std::lock_guard lock(mutex_);
    startWorkers(job.wanted);
    list(&job);
    runs_.fetch_add(1, std::memory_order_relaxed);
  }
  for (unsigned i = 1; i < sharers; ++i) {
    wake_.notify_one();
  }
  job.work();
  std::unique_lock lock(mutex_);
  unlist(&job);
  lock.unlock();
  waitBriefly([&job] { return job.helpers.load(std::memory_order_relaxed) == 0; });
  lock.lock();
  job.left.wait(lock, [&job] { return job.helpers == 0; });
}

// With the lock held. Threads, or memory for them, may be lacking: then there are fewer.
void WorkerPool::startWorkers(std::size_t count) {
  try {
    while (workers_.size() < count) {
      workers_.emplace_back([this] { help(); });
    }
  } catch (const std::exception&) {
    return;
  }
}

void WorkerPool::help() {
  std::unique_lock lock(mutex_);
  while (true) {
    Job* job = nullptr;
    wake_.wait(lock, [&] { return stopping_ || (job = firstWaiting()) != nullptr; });
    if (job == nullptr) {
      return;
    }
    --job->wanted;
    ++job->helpers;
    lock.unlock();
    job->work();
    lock.lock();
    // The last one to leave tells with the lock held: after that the caller may end the job.
    if (--job->helpers == 0) {
      job->left.notify_one();
    }
    if (firstWaiting() == nullptr) {
      const unsigned runs = runs_.load(std::memory_order_relaxed);
      lock.unlock();
      waitBriefly([&] { return runs_.load(std::memory_order_relaxed) != runs; });
      lock.lock();
    }
  }
}

WorkerPool::Job* WorkerPool::firstWaiting() const {
  Job* job = jobs_;
  while (job != nullptr && job->wanted == 0) {
    job = job->next;
  }
  return job;
}

// At the end, so that the oldest run is helped first.
void WorkerPool::list(Job* job) {
  Job** place = &jobs_;
  while (*place != nullptr) {
    place = &(*place)->next;
  }
  *place = job;
}

void WorkerPool::unlist(const Job* job) {
  Job** place = &jobs_;
  while (*place != job) {
    place = &(*place)->next;
  }
  *place = job->next;
}

}  // namespace vantorel::host
