#include "cli/base/Rows.h"

#include <atomic>

#include "host/frames/WorkerPool.h"

namespace vantorel::cli {

namespace {

std::atomic<unsigned> thread_limit = 0;  // 0: as many as the machine has

}  // namespace

void limitRowThreads(unsigned threads) {
  thread_limit = threads;
}

void runRows(std::int32_t rows, void* data, void (*run)(void* data, std::int32_t begin, std::int32_t end)) {
  static host::WorkerPool pool;
  pool.run(0, rows, thread_limit, {run, data});
}

}  // namespace vantorel::cli
