// Threads that process the rows of frames, shared by all instances of a module.
//
// A run allocates nothing and cannot fail: the calling thread takes part and, if no other thread is available, finishes
// the run alone. For the same reason concurrent and nested runs cannot deadlock.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

namespace vantorel::host {

// A function that processes the rows [begin, end), with its data. It must not throw.
struct RowRangeFunction {
  void (*run)(void* data, std::int32_t begin, std::int32_t end) = nullptr;
  void* data = nullptr;
};

// Safe to use from several threads.
//
// Each thread begins with a contiguous share of the rows, the same in every run, so that with frames of one size its
// rows are still in its core's cache. A thread that has finished its share takes over half of another's.
class WorkerPool {
 public:
  // Threads start when they are first needed.
  WorkerPool();
  ~WorkerPool();
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;

  // Runs the function over disjoint ranges that make up [top, bottom), and returns when all are done. At most `threads`
  // threads work on it, including the calling one, and never more than the machine has or 128; 0 means that maximum.
  void run(std::int32_t top, std::int32_t bottom, unsigned threads, const RowRangeFunction& function);

 private:
  struct Job;

  void startWorkers(std::size_t count);
  void help();
  Job* firstWaiting() const;
  void list(Job* job);
  void unlist(const Job* job);

  const unsigned max_threads_;
  std::mutex mutex_;  // guards everything below, and the jobs except their rows
  std::condition_variable wake_;
  std::atomic<unsigned> runs_{0};  // begun so far
  Job* jobs_ = nullptr;
  bool stopping_ = false;
  std::vector<std::thread> workers_;
};

}  // namespace vantorel::host
