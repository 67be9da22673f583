#include "view/session/RenderJob.h"

#include <fmt/format.h>

#include <new>

#include "cli/base/CommandError.h"
#include "cli/shots/FrameWorkers.h"
#include "cli/shots/ShotPlan.h"
#include "view/session/Messages.h"

namespace vantorel::view {

RenderJob::~RenderJob() {
  cancel();
}

bool RenderJob::start(const cli::RenderOptions& options, const tracks::CornerTrack& track) {
  const std::scoped_lock lock(mutex_);
  if (std::string_view(name_) == "running") {
    return false;
  }
  name_ = "running";
  message_.clear();
  total_ = options.frames ? options.frames->count() : 1;
  progress_ = std::make_shared<cli::Progress>(false, total_);
  // The previous thread has already reported its end.
  thread_ = std::jthread([this, options, track](const std::stop_token& stop) { run(options, track, stop); });
  return true;
}

void RenderJob::cancel() {
  const std::scoped_lock lock(mutex_);
  thread_.request_stop();
}

nlohmann::json RenderJob::state() {
  const std::scoped_lock lock(mutex_);
  return {
      {"state", name_}, {"done", progress_ ? progress_->framesDone() : 0}, {"total", total_}, {"message", message_}};
}

bool RenderJob::isRunning() {
  const std::scoped_lock lock(mutex_);
  return std::string_view(name_) == "running";
}

void RenderJob::run(const cli::RenderOptions& options, const tracks::CornerTrack& track, const std::stop_token& stop) {
  try {
    const cli::Shot shot = cli::planShot(options, asCorners(track));
    cli::renderFrames(shot, stop, *progress_);
    end("done", fmt::format("{} written", options.output));
  } catch (const cli::CommandError& error) {
    const bool cancelled = error.code() == cli::ExitCode::Interrupted;
    end(cancelled ? "cancelled" : "failed", cancelled ? "cancelled; finished frames are kept" : error.text());
  } catch (const std::bad_alloc&) {
    end("failed", "out of memory; close other programs or give fewer --threads");
  } catch (const std::exception& error) {
    end("failed", error.what());
  }
}

void RenderJob::end(const char* name, const std::string& message) {
  const std::scoped_lock lock(mutex_);
  name_ = name;
  message_ = message;
}

}  // namespace vantorel::view
