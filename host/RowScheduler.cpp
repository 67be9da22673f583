#include "host/RowScheduler.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>

#include <algorithm>

#include "host/CallContext.h"

namespace vantorel::host {

// One run over the rows.
struct RowScheduler::Pass {
  const RowTask& task;
  double share_begin;
  double share_per_row;
  std::atomic<std::int32_t> code{0};
  std::atomic<std::int32_t> rows_done{0};

  // The first failure stays.
  void fail(std::int32_t failure) {
    std::int32_t none = 0;
    code.compare_exchange_strong(none, failure);
  }
};

void RowScheduler::begin(unsigned threads, const std::function<void(double)>& progress, std::stop_token stop) {
  const unsigned limit = static_cast<unsigned>(tbb::this_task_arena::max_concurrency());
  const unsigned wanted = threads == 0 ? limit : std::min(threads, 4096U);
  if (wanted == 1) {
    arena_.reset();
  } else if (!arena_ || wanted != threads_) {
    arena_.emplace(static_cast<int>(wanted));
  }
  threads_ = wanted;
  progress_ = progress ? &progress : nullptr;
  stop_ = std::move(stop);
  reported_ = 0.0;
  progress_failure_ = nullptr;
}

std::int32_t RowScheduler::run(CallContext& context, std::int32_t top, std::int32_t bottom, double share_begin,
                               double share_end, const RowTask& task) {
  if (bottom <= top) {
    return ERR_NONE;
  }
  Pass pass{task, share_begin, (share_end - share_begin) / (static_cast<double>(bottom) - top)};
  const auto run_rows = [&](const tbb::blocked_range<std::int32_t>& rows) {
    const CallScope scope(context);
    for (std::int32_t y = rows.begin(); y < rows.end() && pass.code.load(std::memory_order_relaxed) == 0; ++y) {
      runRow(pass, y);
    }
  };
  const tbb::blocked_range<std::int32_t> all_rows(top, bottom);
  if (arena_) {
    arena_->execute([&] { tbb::parallel_for(all_rows, run_rows); });
  } else {
    run_rows(all_rows);
  }
  return pass.code.load();
}

void RowScheduler::runRow(Pass& pass, std::int32_t y) {
  if (stopRequested()) {
    pass.fail(kCodeInterrupted);
    return;
  }
  const std::int32_t code = guarded([&] { return pass.task.run(pass.task.data, y); });
  if (code != 0) {
    pass.fail(code);
    return;
  }
  if (progress_ != nullptr) {
    report(pass.share_begin + pass.share_per_row * (pass.rows_done.fetch_add(1, std::memory_order_relaxed) + 1));
    const std::lock_guard lock(mutex_);
    if (progress_failure_) {
      pass.fail(kCodeException);
    }
  }
}

void RowScheduler::report(double share) {
  if (progress_ == nullptr) {
    return;
  }
  const std::lock_guard lock(mutex_);
  const double bounded = std::clamp(share, 0.0, 1.0);
  if (progress_failure_ || bounded <= reported_) {
    return;
  }
  reported_ = bounded;
  try {
    (*progress_)(bounded);
  } catch (...) {
    progress_failure_ = std::current_exception();
  }
}

}  // namespace vantorel::host
