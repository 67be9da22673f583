// One frame from files to file: read layer and plate, render, composite, write.
#pragma once

#include <functional>
#include <optional>
#include <stop_token>

#include "cli/shots/FrameReport.h"
#include "cli/shots/Shot.h"
#include "host/Instance.h"

namespace vantorel::cli {

// A frame before it is written.
struct ComposedFrame {
  // Premultiplied RGBA at the shot's depth and resolution, in the shot's own colour space; the renderer's own, until
  // its next frame.
  host::ImageView pixels;
  host::Rect canvas;                         // what the pixels cover, in full-resolution pixels
  host::Rect written;                        // what of it a file holds
  std::shared_ptr<const Picture> reference;  // whose metadata, alpha and colour space a file takes: the plate or layer
  FrameReport report;                        // without the time of writing
};

// Renders frame after frame of a shot, one at a time; several of them work on one shot at the same time.
class FrameRenderer {
 public:
  // `progress` is called with the share of a frame's rows that are done, and may be empty. The shot must outlive it.
  FrameRenderer(const Shot& shot, std::stop_token stop, std::function<void(double)> progress);

  // Renders and writes the frame, or, when resuming, finds it done and returns nothing. Throws CommandError.
  std::optional<FrameReport> render(std::int32_t frame);

  // Reads, renders and composites the frame, and leaves the output's file alone. With a part, a rectangle within the
  // frame, that much is enough: it has the bits that it has in the whole, and where these would depend on more than the
  // part, the whole is composed. Throws CommandError.
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
  host::AnimatedCorners corners_;            // as the instance has them
  std::optional<host::Size> corners_layer_;  // the layer size that the instance's corners are for
  host::Image output_;
};

}  // namespace vantorel::cli
