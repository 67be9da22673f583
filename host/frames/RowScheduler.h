// Runs a function over the rows of a frame in parallel, with progress reports and cancellation.
#pragma once

#include <atomic>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <stop_token>

#include "host/frames/WorkerPool.h"

namespace vantorel::host {

struct CallContext;

// A function that processes a row and returns a code, 0 for success, with its data.
struct RowFunction {
  std::int32_t (*run)(const void* data, std::int32_t y) = nullptr;
  const void* data = nullptr;
};

class RowScheduler {
 public:
  // Prepares for a frame on the pool's threads. `threads` 0 means as many as the machine has, 1 only the calling
  // thread. `progress` may be empty; it and the pool must outlive the frame.
  void begin(WorkerPool& pool, unsigned threads, const std::function<void(double)>& progress, std::stop_token stop);

  // Runs the task for every row of [top, bottom), each once, on several threads in any order. The reported progress
  // goes from `share_begin` to `share_end`. Returns the first non-zero code, or kCodeInterrupted if the frame was
  // stopped; rows that have not begun by then are skipped.
  std::int32_t run(CallContext& context, std::int32_t top, std::int32_t bottom, double share_begin, double share_end,
                   const RowFunction& task);

  // Calls the progress callback with a share that never decreases.
  void report(double share);

  bool stopRequested() const { return stop_.stop_requested(); }

  // The exception that the progress callback threw, if any.
  std::exception_ptr progressFailure() const { return progress_failure_; }

 private:
  struct Pass;
  static void runRows(void* pass, std::int32_t begin, std::int32_t end);
  void runRow(Pass& pass, std::int32_t y);

  WorkerPool* pool_ = nullptr;
  unsigned threads_ = 1;
  const std::function<void(double)>* progress_ = nullptr;
  std::stop_token stop_;
  std::mutex mutex_;  // guards the progress
  double reported_ = 0.0;
  std::exception_ptr progress_failure_;
};

}  // namespace vantorel::host
