// Threads that help with the rows of frames, shared by all instances of a module.
//
// A run allocates nothing and cannot fail: the calling thread takes part and finishes a run alone where no other thread
// can be started or has time. For the same reason several runs at once, and runs inside of rows, come to their end.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

namespace vantorel::host {

// A function of the rows [begin, end), with the data that it works on. It must not throw.
struct RowRangeFunction {
  void (*run)(void* data, std::int32_t begin, std::int32_t end) = nullptr;
  void* data = nullptr;
};

// Safe to use from several threads.
//
// Each thread that takes part begins on a share of neighbouring rows, the same in every run, so that frames of one size
// find their rows in the thread's cache; one that has finished its share takes over half of another's.
class WorkerPool {
 public:
  // Threads start when they are first needed.
  WorkerPool();
  ~WorkerPool();
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;

  // Runs the function over disjoint ranges that make up [top, bottom), and returns when all are done. At most `threads`
  // threads work on it, the calling one among them, and no more than the machine has or 128; 0 means as many as that.
  void run(std::int32_t top, std::int32_t bottom, unsigned threads, const RowRangeFunction& function);

 private:
  struct Job;

  void startWorkers(std::size_t count);
  void help();
  Job* firstWaiting() const;
  void list(Job* job);
  void unlist(const Job* job);

  const unsigned max_threads_;
  std::mutex mutex_;  // of everything below, and of the jobs but for their rows
  std::condition_variable wake_;
  std::atomic<unsigned> runs_{0};  // that were begun so far
  Job* jobs_ = nullptr;
  bool stopping_ = false;
  std::vector<std::thread> workers_;
};

}  // namespace vantorel::host
