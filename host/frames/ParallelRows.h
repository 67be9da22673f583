// Rows on several threads, through oneTBB. The only file that calls it.
#pragma once

#include <cstdint>
#include <memory>

namespace vantorel::host {

// A function of the rows [begin, end), with the data that it works on. It must not throw.
struct RowRangeFunction {
  void (*run)(void* data, std::int32_t begin, std::int32_t end) = nullptr;
  void* data = nullptr;
};

class ParallelRows {
 public:
  ParallelRows();
  ~ParallelRows();
  ParallelRows(const ParallelRows&) = delete;
  ParallelRows& operator=(const ParallelRows&) = delete;

  // Uses at most so many threads from now on, the calling one among them, and no more than the machine has; 0 means as
  // many as that.
  void setThreads(unsigned threads);

  // Runs the task over disjoint parts that make up [top, bottom), and returns when all are done.
  void run(std::int32_t top, std::int32_t bottom, const RowRangeFunction& task);

 private:
  struct Arena;
  std::unique_ptr<Arena> arena_;  // null with one thread
  unsigned threads_ = 1;
};

}  // namespace vantorel::host
