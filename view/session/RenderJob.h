// The rendering to files that the page can start, monitor and cancel.
#pragma once

#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <stop_token>
#include <string>
#include <thread>

#include "cli/shots/Progress.h"
#include "cli/shots/RenderOptions.h"
#include "tracks/CornerTrack.h"

namespace vantorel::view {

// One rendering at a time. Safe to use from several threads.
class RenderJob {
 public:
  // Cancels the running rendering.
  ~RenderJob();

  // Starts rendering with that track. False if a rendering is already running. Errors in options or files are reported
  // by state().
  bool start(const cli::RenderOptions& options, const tracks::CornerTrack& track);
  void cancel();

  // {"state": "idle" | "running" | "done" | "cancelled" | "failed", "done": frames, "total": frames, "message": text}
  nlohmann::json state();
  bool isRunning();

 private:
  void run(const cli::RenderOptions& options, const tracks::CornerTrack& track, const std::stop_token& stop);
  void end(const char* name, const std::string& message);

  std::mutex mutex_;
  const char* name_ = "idle";
  std::string message_;
  std::int64_t total_ = 0;
  std::shared_ptr<cli::Progress> progress_;
  std::jthread thread_;
};

}  // namespace vantorel::view
