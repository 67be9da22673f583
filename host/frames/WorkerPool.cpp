#include "host/frames/WorkerPool.h"

#include <algorithm>
#include <exception>

namespace vantorel::host {

// Ranges are long at first, which keeps a thread on neighbouring rows, and end with single rows, so that all threads
// finish at the same time.
void WorkerPool::Job::work() {
  std::int32_t begin = top.load(std::memory_order_relaxed);
  while (begin < bottom) {
    const std::int64_t left_over = std::int64_t{bottom} - begin;
    const auto count = static_cast<std::int32_t>(std::max<std::int64_t>(left_over / (2 * sharers), 1));
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
  Job job{function, bottom, static_cast<std::int32_t>(sharers), top, sharers - 1};
  {
    const std::lock_guard lock(mutex_);
    startWorkers(job.wanted);
    list(&job);
  }
  for (unsigned i = 1; i < sharers; ++i) {
    wake_.notify_one();
  }
  job.work();
  std::unique_lock lock(mutex_);
  unlist(&job);
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
