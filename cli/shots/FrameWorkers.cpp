#include "cli/shots/FrameWorkers.h"

#include <mutex>
#include <new>
#include <optional>
#include <system_error>
#include <thread>
#include <vector>

#include "cli/base/CommandError.h"
#include "cli/base/Text.h"
#include "cli/shots/FrameRenderer.h"
#include "cli/shots/RunSummary.h"

namespace vantorel::cli {

namespace {

// The state shared by the workers.
class Run {
 public:
  Run(const Shot& shot, const std::stop_token& stop, Progress& progress)
      : shot_(shot), stop_(stop), progress_(progress) {}

  // A worker: renders frames until none is left or the run ends.
  void work() {
    try {
      FrameRenderer renderer(shot_, stop_, rowProgress());
      while (const std::optional<std::int64_t> index = next()) {
        announce(*index + shot_.frames_in_flight);
        renderOne(renderer, shot_.frames.at(*index));
      }
    } catch (const CommandError& error) {
      end(error);
    } catch (const std::bad_alloc&) {
      end(outOfMemory("", "out of memory; give fewer --threads or a --downsample"));
    }
  }

  ExitCode finish() {
    if (error_) {
      throw *error_;
    }
    // A stop request that comes after the last frame has begun, and does not interrupt it, is ignored.
    if (next_index_ != shot_.frames.count()) {
      throw interrupted();
    }
    for (const std::string& message : summary_.messages(shot_)) {
      progress_.message(message);
    }
    progress_.finish(summary_.lastLine(shot_, progress_.seconds()));
    return summary_.anyFailed() ? ExitCode::EffectFailed : ExitCode::Done;
  }

 private:
  std::function<void(double)> rowProgress() const {
    if (!progress_.showsRows()) {
      return {};
    }
    return [this](double share) { progress_.rows(share); };
  }

  // Prefetches a later frame's files while this one is rendered. Not when resuming, since the later frame may already
  // be done.
  void announce(std::int64_t index) const {
    if (index >= shot_.frames.count() || shot_.options.resume) {
      return;
    }
    for (const PictureSource* source : {shot_.layer.get(), shot_.plate.get(), shot_.matte.get()}) {
      if (source != nullptr) {
        source->announce(shot_.frames.at(index));
      }
    }
  }

  // The index of the next frame to render, from 0.
  std::optional<std::int64_t> next() {
    const std::scoped_lock lock(mutex_);
    if (ended_ || stop_.stop_requested() || next_index_ == shot_.frames.count()) {
      return std::nullopt;
    }
    return next_index_++;
  }

  void renderOne(FrameRenderer& renderer, std::int32_t frame) {
    try {
      report(frame, renderer.render(frame));
    } catch (const CommandError& error) {
      fail(frame, error);
    } catch (const std::bad_alloc&) {
      fail(frame, outOfMemory(shot_.output.path(frame), "out of memory; give fewer --threads or a --downsample"));
    } catch (const std::exception& error) {
      fail(frame, {ExitCode::EffectFailed, shot_.output.path(frame),
                   oneLine(error.what()) + "; raise the limits on processes and memory, or report this"});
    }
  }

  void report(std::int32_t frame, const std::optional<FrameReport>& report) {
    const std::scoped_lock lock(mutex_);
    summary_.add(frame, report);
    if (report && shot_.options.json) {
      try {
        printJson(*report);
      } catch (const CommandError& error) {
        // If nobody reads standard output any more, the run ends even with --keep-going.
        error_ = error_ ? error_ : error;
        ended_ = true;
      }
    }
    progress_.frameDone(!report);
  }

  void fail(std::int32_t frame, const CommandError& error) {
    if (!shot_.options.keep_going || shot_.frames.count() == 1 || error.code() == ExitCode::Interrupted) {
      return end(error);
    }
    progress_.message("frame " + std::to_string(frame) + ": " + error.text());
    const std::scoped_lock lock(mutex_);
    summary_.addFailed(frame);
  }

  void end(const CommandError& error) {
    const std::scoped_lock lock(mutex_);
    ended_ = true;
    if (!error_) {
      error_ = error;
    }
  }

  const Shot& shot_;
  const std::stop_token stop_;
  Progress& progress_;
  std::mutex mutex_;
  std::int64_t next_index_ = 0;
  RunSummary summary_;
  bool ended_ = false;
  std::optional<CommandError> error_;
};

}  // namespace

ExitCode renderFrames(const Shot& shot, const std::stop_token& stop, Progress& progress) {
  Run run(shot, stop, progress);
  {
    std::vector<std::jthread> others;
    try {
      for (int w = 1; w < shot.frames_in_flight; ++w) {
        others.emplace_back([&] { run.work(); });
      }
    } catch (const std::system_error&) {
      // If no more threads can be started, those already running do the work.
    }
    run.work();
  }
  return run.finish();
}

}  // namespace vantorel::cli
