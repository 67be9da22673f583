// Runs a function over the rows of a frame: in parallel, with progress, and until somebody stops it.
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

// A function of a row that returns a code, 0 for success, with the data that it works on.
struct RowFunction {
  std::int32_t (*run)(const void* data, std::int32_t y) = nullptr;
  const void* data = nullptr;
};

class RowScheduler {
 public:
  // Prepares for a frame on threads of the pool's. `threads` 0 means as many as the machine has, 1 the calling thread
  // alone. `progress` may be empty; it and the pool must outlive the frame.
  void begin(WorkerPool& pool, unsigned threads, const std::function<void(double)>& progress, std::stop_token stop);

  // Runs the task for every row of [top, bottom), each once, on several threads in any order. The share of the frame
  // done goes from `share_begin` to `share_end`. Returns the first code that is not 0, or kCodeInterrupted when the
  // frame was stopped; the rows that have not begun by then are left out.
  std::int32_t run(CallContext& context, std::int32_t top, std::int32_t bottom, double share_begin, double share_end,
                   const RowFunction& task);

  // Tells the progress callback, never less than before.
  void report(double share);

  bool stopRequested() const { return stop_.stop_requested(); }

  // What the progress callback threw, if it did.
  std::exception_ptr progressFailure() const { return progress_failure_; }

 private:
  struct Pass;
  static void runRows(void* pass, std::int32_t begin, std::int32_t end);
  void runRow(Pass& pass, std::int32_t y);

  WorkerPool* pool_ = nullptr;
  unsigned threads_ = 1;
  const std::function<void(double)>* progress_ = nullptr;
  std::stop_token stop_;
  std::mutex mutex_;  // of the progress
  double reported_ = 0.0;
  std::exception_ptr progress_failure_;
};

}  // namespace vantorel::host
