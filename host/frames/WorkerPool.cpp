#include "host/frames/WorkerPool.h"

#include <algorithm>
#include <array>
#include <exception>

namespace vantorel::host {

namespace {

// Spins briefly for a condition that is likely to be met within microseconds, such as the next of many small frames:
// going to sleep and waking up would take longer than such a frame.
template <typename Condition>
void waitBriefly(Condition condition) {
  constexpr int kTries = 100;
  for (int i = 0; i < kTries && !condition(); ++i) {
    std::this_thread::yield();
  }
}

constexpr unsigned kMaxSharers = 128;

// Aligned to its size, so that every compiler makes it a lock-free atomic.
struct alignas(8) RowRange {
  std::int32_t begin;
  std::int32_t end;
};

// The rows that a thread has left to do, in their own cache line.
struct alignas(64) Share {
  std::atomic<RowRange> rows;

  std::int32_t left() const {
    const RowRange range = rows.load(std::memory_order_relaxed);
    return range.end - range.begin;
  }

  // Takes the first few rows: few enough that expensive rows can still be shared out. False if there are none.
  bool takeFirst(RowRange* taken) {
    constexpr std::int32_t kMaxCount = 8;
    RowRange range = rows.load(std::memory_order_relaxed);
    while (range.begin < range.end) {
      const std::int32_t count = std::clamp((range.end - range.begin) / 4, 1, kMaxCount);
      *taken = {range.begin, range.begin + count};
      if (rows.compare_exchange_weak(range, {taken->end, range.end}, std::memory_order_relaxed)) {
        return true;
      }
    }
    return false;
  }

  // Takes the last half, rounded up. False if nothing is left or another thread was faster.
  bool takeLast(RowRange* taken) {
    RowRange range = rows.load(std::memory_order_relaxed);
    const std::int32_t middle = range.begin + (range.end - range.begin) / 2;
    *taken = {middle, range.end};
    return range.begin < range.end &&
           rows.compare_exchange_strong(range, {range.begin, middle}, std::memory_order_relaxed);
  }
};

}  // namespace

// A run in progress. It is on its caller's stack, and in the list as long as helpers may join.
struct WorkerPool::Job {
  const RowRangeFunction& function;
  const unsigned sharers;             // how many threads may work on it
  unsigned joined = 1;                // how many have joined, including the caller
  std::atomic<unsigned> helpers = 0;  // have joined and not left yet
  std::condition_variable left{};
  Job* next = nullptr;
  std::array<Share, kMaxSharers> shares;

  Job(const RowRangeFunction& row_function, std::int32_t top, std::int32_t bottom, unsigned count)
      : function(row_function), sharers(count) {
    const std::int64_t rows = std::int64_t{bottom} - top;
    std::int32_t begin = top;
    for (unsigned i = 0; i < sharers; ++i) {
      const auto end = static_cast<std::int32_t>(top + rows * (i + 1) / sharers);
      shares[i].rows.store({begin, end}, std::memory_order_relaxed);
      begin = end;
    }
  }

  // Works on the thread's own share, then on parts of the others', until all rows are taken.
  void work(unsigned self) {
    RowRange rows{};
    do {
      while (shares[self].takeFirst(&rows)) {
        function.run(function.data, rows.begin, rows.end);
      }
    } while (takeOver(self));
  }

  // Takes half the rows of the longest share. False if no share has any left.
  bool takeOver(unsigned self) {
    const auto shorter = [](const Share& a, const Share& b) { return a.left() < b.left(); };
    while (true) {
      Share& longest = *std::max_element(shares.data(), shares.data() + sharers, shorter);
      RowRange rows{};
      if (longest.left() <= 0) {
        return false;
      }
      if (longest.takeLast(&rows)) {
        shares[self].rows.store(rows, std::memory_order_relaxed);
        return true;
      }
    }
  }
};

WorkerPool::WorkerPool() : max_threads_(std::clamp(std::thread::hardware_concurrency(), 1u, kMaxSharers)) {}

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
  Job job(function, top, bottom, sharers);
  {
    const std::lock_guard lock(mutex_);
    startWorkers(sharers - 1);
    list(&job);
    runs_.fetch_add(1, std::memory_order_relaxed);
  }
  for (unsigned i = 1; i < sharers; ++i) {
    wake_.notify_one();
  }
  job.work(0);
  std::unique_lock lock(mutex_);
  unlist(&job);
  lock.unlock();
  waitBriefly([&job] { return job.helpers.load(std::memory_order_relaxed) == 0; });
  lock.lock();
  job.left.wait(lock, [&job] { return job.helpers == 0; });
}

// Call with the lock held. If the system cannot start more threads, there are fewer.
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
    const unsigned self = job->joined++;
    ++job->helpers;
    lock.unlock();
    job->work(self);
    lock.lock();
    // The last helper to leave notifies with the lock held, since the caller may destroy the job right afterwards.
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
  while (job != nullptr && job->joined == job->sharers) {
    job = job->next;
  }
  return job;
}

// Appended, so that helpers join the oldest run first.
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
