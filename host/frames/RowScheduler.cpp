#include "host/frames/RowScheduler.h"

#include <algorithm>
#include <utility>

#include "host/callbacks/CallContext.h"

namespace vantorel::host {

// One run over the rows.
struct RowScheduler::Pass {
  RowScheduler& scheduler;
  CallContext& context;
  const RowFunction& task;
  double share_begin;
  double share_per_row;
  std::atomic<std::int32_t> code{0};
  std::atomic<std::int32_t> rows_done{0};

  // Only the first failure is kept.
  void fail(std::int32_t failure) {
    std::int32_t none = 0;
    code.compare_exchange_strong(none, failure);
  }
};

void RowScheduler::begin(WorkerPool& pool, unsigned threads, const std::function<void(double)>& progress,
                         std::stop_token stop) {
  pool_ = &pool;
  threads_ = threads;
  progress_ = progress ? &progress : nullptr;
  stop_ = std::move(stop);
  reported_ = 0.0;
  progress_failure_ = nullptr;
}

std::int32_t RowScheduler::run(CallContext& context, std::int32_t top, std::int32_t bottom, double share_begin,
                               double share_end, const RowFunction& task) {
  if (bottom <= top) {
    return ERR_NONE;
  }
  Pass pass{*this, context, task, share_begin, (share_end - share_begin) / (static_cast<double>(bottom) - top)};
  pool_->run(top, bottom, threads_, {runRows, &pass});
  return pass.code.load();
}

void RowScheduler::runRows(void* data, std::int32_t begin, std::int32_t end) {
  Pass& pass = *static_cast<Pass*>(data);
  const CallScope scope(pass.context);
  for (std::int32_t y = begin; y < end && pass.code.load(std::memory_order_relaxed) == 0; ++y) {
    pass.scheduler.runRow(pass, y);
  }
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
  // Counted only where there is progress to report: the atomic increment waits for the row's stores, which is
  // noticeable when rows are short.
  if (progress_ != nullptr && pass.share_per_row > 0.0) {
    const std::int32_t done = pass.rows_done.fetch_add(1, std::memory_order_relaxed) + 1;
    report(pass.share_begin + pass.share_per_row * done);
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
