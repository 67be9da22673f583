#include "host/frames/ParallelRows.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

#include <algorithm>

namespace vantorel::host {

struct ParallelRows::Arena {
  tbb::task_arena threads;

  explicit Arena(unsigned count) : threads(static_cast<int>(count)) {}
};

ParallelRows::ParallelRows() = default;
ParallelRows::~ParallelRows() = default;

void ParallelRows::setThreads(unsigned threads) {
  const auto all = static_cast<unsigned>(tbb::this_task_arena::max_concurrency());
  const unsigned wanted = threads == 0 ? all : std::min(threads, all);
  if (wanted != threads_) {
    arena_ = wanted == 1 ? nullptr : std::make_unique<Arena>(wanted);
    threads_ = wanted;
  }
}

void ParallelRows::run(std::int32_t top, std::int32_t bottom, const RowRangeFunction& task) {
  if (!arena_) {
    task.run(task.data, top, bottom);
    return;
  }
  arena_->threads.execute([&] {
    tbb::parallel_for(tbb::blocked_range<std::int32_t>(top, bottom),
                      [&](const auto& rows) { task.run(task.data, rows.begin(), rows.end()); });
  });
}

}  // namespace vantorel::host
