// Renders one frame from input files to output file: reads layer and plate, renders, composites and writes.
#pragma once

#include <functional>
#include <optional>
#include <stop_token>

#include "cli/shots/FrameReport.h"
#include "cli/shots/Shot.h"
#include "host/Instance.h"

namespace vantorel::cli {

// A finished frame before it is written.
struct ComposedFrame {
  // Premultiplied RGBA at the shot's depth and resolution, in the shot's working colour space. Owned by the renderer
  // and valid until its next frame.
  host::ImageView pixels;
  host::Rect canvas;                         // the area that the pixels cover, in full-resolution pixels
  host::Rect written;                        // the part of it that is written to a file
  std::shared_ptr<const Picture> reference;  // the plate or layer, whose metadata, alpha and colour space the file gets
  FrameReport report;                        // without the writing time
};

// Renders frames of a shot, one at a time; several renderers can work on one shot at the same time.
class FrameRenderer {
 public:
  // `progress` is called with the share of a frame's rows that is done; it may be empty. The shot must outlive it.
  FrameRenderer(const Shot& shot, std::stop_token stop, std::function<void(double)> progress);

  // Renders and writes the frame. When resuming, returns nothing if the frame is already done. Throws CommandError.
  std::optional<FrameReport> render(std::int32_t frame);

  // Reads, renders and composites the frame without writing it. With `part`, a rectangle within the frame, it may
  // compose only that part, with the same bits as in the whole frame; if these would depend on more than the part, the
  // whole frame is composed. Throws CommandError.
  ComposedFrame compose(std::int32_t frame, const std::optional<host::Rect>& part = std::nullopt);

 private:
  host::FrameOptions frameOptions(std::int32_t frame) const;
  bool composesParts() const;
  void placeCorners(host::Size layer);
  host::Rect canvasFor(std::int32_t frame, host::Size layer, const Picture* plate);
  host::FrameResult draw(const Picture& layer, const host::Rect& canvas, std::int32_t frame);
  void prepareOutput(const host::Rect& canvas);
  void featherEdges(std::int32_t frame, const host::Rect& canvas);
  void applyMatte(std::int32_t frame, const host::Rect& canvas);
  void composite(const Picture& plate, const std::string& plate_name, const host::Rect& canvas, bool is_part);
  host::Rect writtenPart(std::int32_t frame, const host::Rect& canvas, const Picture* plate);
  host::ImageView framePart(const host::Rect& canvas);
  void write(ComposedFrame& composed);

  const Shot& shot_;
  std::stop_token stop_;
  std::function<void(double)> progress_;
  host::Instance instance_;
  host::AnimatedCorners corners_;            // those set in the instance
  std::optional<host::Size> corners_layer_;  // the layer size for which they were set
  host::Image output_;
};

}  // namespace vantorel::cli
