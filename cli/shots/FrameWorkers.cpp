#include "cli/shots/FrameWorkers.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <mutex>
#include <new>
#include <optional>
#include <system_error>
#include <thread>
#include <vector>

#include "cli/base/CommandError.h"
#include "cli/shots/FrameRenderer.h"

namespace vantorel::cli {

namespace {

// What the workers share.
class Run {
 public:
  Run(const Shot& shot, const std::stop_token& stop, Progress& progress)
      : shot_(shot), stop_(stop), progress_(progress) {}

  // A worker: renders frames until none is left or the run ends.
  void work() {
    try {
      FrameRenderer renderer(shot_, stop_, rowProgress());
      while (const std::optional<std::int32_t> frame = next()) {
        renderOne(renderer, *frame);
      }
    } catch (const CommandError& error) {
      end(error);
    }
  }

  ExitCode finish() {
    if (error_) {
      throw *error_;
    }
    // A request to stop that comes after the last frame has begun and does not touch it changes nothing.
    if (next_index_ != shot_.frames.count()) {
      throw interrupted();
    }
    if (skipped_ > 0) {
      progress_.message(
          fmt::format("vantorel: skipped {} of {} frames, which were done already and are newer than their inputs",
                      skipped_, shot_.frames.count()));
    }
    if (failed_.empty()) {
      return ExitCode::Done;
    }
    progress_.message(fmt::format("vantorel: {} of {} frames failed: {}; fix their files and run again with --resume",
                                  failed_.size(), shot_.frames.count(), frameList(failed_)));
    return ExitCode::EffectFailed;
  }

 private:
  std::function<void(double)> rowProgress() const {
    if (!progress_.showsRows()) {
      return {};
    }
    return [this](double share) { progress_.rows(share); };
  }

  std::optional<std::int32_t> next() {
    const std::scoped_lock lock(mutex_);
    if (ended_ || stop_.stop_requested() || next_index_ == shot_.frames.count()) {
      return std::nullopt;
    }
    return shot_.frames.at(next_index_++);
  }

  void renderOne(FrameRenderer& renderer, std::int32_t frame) {
    try {
      tell(renderer.render(frame));
    } catch (const CommandError& error) {
      fail(frame, error);
    } catch (const std::bad_alloc&) {
      fail(frame,
           {ExitCode::EffectFailed, shot_.output.path(frame), "out of memory; give fewer --threads or a --downsample"});
    }
  }

  void tell(const std::optional<FrameReport>& report) {
    const std::scoped_lock lock(mutex_);
    skipped_ += report ? 0 : 1;
    if (report && shot_.options.json) {
      try {
        printJson(*report);
      } catch (const CommandError& error) {
        // Without a reader there is no use in going on, whatever the options say of frames.
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
    progress_.message("vantorel: frame " + std::to_string(frame) + ": " + error.text());
    const std::scoped_lock lock(mutex_);
    failed_.push_back(frame);
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
  std::int64_t skipped_ = 0;
  bool ended_ = false;
  std::optional<CommandError> error_;
  std::vector<std::int32_t> failed_;
};

}  // namespace

std::string frameList(std::vector<std::int32_t> frames) {
  std::sort(frames.begin(), frames.end());
  std::vector<std::string> ranges;
  for (std::size_t first = 0; first < frames.size();) {
    std::size_t last = first;
    while (last + 1 < frames.size() && frames[last + 1] == frames[last] + 1) {
      ++last;
    }
    ranges.push_back(first == last ? fmt::format("{}", frames[first])
                                   : fmt::format("{}-{}", frames[first], frames[last]));
    first = last + 1;
  }
  return fmt::format("{}", fmt::join(ranges, ", "));
}

ExitCode renderFrames(const Shot& shot, const std::stop_token& stop, Progress& progress) {
  Run run(shot, stop, progress);
  {
    std::vector<std::jthread> others;
    try {
      for (int w = 1; w < shot.frames_in_flight; ++w) {
        others.emplace_back([&] { run.work(); });
      }
    } catch (const std::system_error&) {
      // Where no more threads can be had, those that there are do the work.
    }
    run.work();
  }
  return run.finish();
}

}  // namespace vantorel::cli
