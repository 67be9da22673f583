// One frame from files to file: read layer and plate, render, composite, write.
#pragma once

#include <functional>
#include <optional>
#include <stop_token>

#include "cli/shots/FrameReport.h"
#include "cli/shots/Shot.h"
#include "host/Instance.h"

namespace vantorel::cli {

// Renders frame after frame of a shot, one at a time; several of them work on one shot at the same time.
class FrameRenderer {
 public:
  // `progress` is called with the share of a frame's rows that are done, and may be empty. The shot must outlive it.
  FrameRenderer(const Shot& shot, std::stop_token stop, std::function<void(double)> progress);

  // Renders and writes the frame, or, when resuming, finds it done and returns nothing. Throws CommandError.
  std::optional<FrameReport> render(std::int32_t frame);

 private:
  host::FrameOptions frameOptions(std::int32_t frame) const;
  void placeCorners(host::Size layer);
  host::Rect canvasFor(std::int32_t frame, host::Size layer);
  void prepareOutput(const host::Rect& canvas);
  void composite(const Picture& plate, const std::string& plate_name);
  void write(std::int32_t frame, const host::Rect& canvas, const Picture& reference);

  const Shot& shot_;
  std::stop_token stop_;
  std::function<void(double)> progress_;
  host::Instance instance_;
  std::optional<host::Size> corners_layer_;  // the layer size that the instance's corners are for
  host::Image output_;
};

}  // namespace vantorel::cli
