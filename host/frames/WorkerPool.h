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
class WorkerPool {
 public:
  // Threads start when they are first needed.
  WorkerPool();
  ~WorkerPool();
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;

  // Runs the function over disjoint ranges that make up [top, bottom), and returns when all are done. At most `threads`
  // threads work on it, the calling one among them, and no more than the machine has; 0 means as many as that.
  void run(std::int32_t top, std::int32_t bottom, unsigned threads, const RowRangeFunction& function);

 private:
  // A run under way. It lives on the stack of its caller and is listed while helpers may join.
  struct Job {
    const RowRangeFunction& function;
    const std::int32_t bottom;
    const std::int32_t sharers;        // the threads that may work on it
    const std::int32_t max_count;      // the most rows that are taken at once
    std::atomic<std::int32_t> top;     // the first row that nobody has taken
    unsigned wanted;                   // helpers that may still join
    std::atomic<unsigned> helpers{0};  // that have joined and not left
    std::condition_variable left{};
    Job* next = nullptr;

    void work();
  };

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
