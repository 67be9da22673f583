#include "host/frames/FrameRender.h"

#include <cstring>
#include <limits>
#include <utility>

#include "host/Downsample.h"
#include "host/frames/DegenerateMapRetry.h"
#include "host/frames/FrameParameters.h"

namespace vantorel::host {

namespace {

constexpr int kMaxBilinearLayer = 32767;  // pixels a side

void copyPixels(const ImageView& from, const ImageView& to) {
  const std::size_t row_bytes = static_cast<std::size_t>(to.size.width) * bytesPerPixel(to.depth);
  for (int y = 0; y < to.size.height; ++y) {
    std::memcpy(to.row(y), from.row(y), row_bytes);
  }
}

// The module reads the layer and is trusted not to write it; the interface has no constant worlds.
ImageView readOnly(const ConstImageView& view) {
  return {const_cast<std::byte*>(view.data), view.row_bytes, view.size, view.depth};
}

// The layer as the module can read it: the caller's own, or a copy in `scaled`, reduced by n. Rows of 8-bit pixels are
// copied also where they are no whole number of pixels apart, because modules step between them in 4-byte words.
Result<ImageView> layerForModule(const ConstImageView& layer, int n, Image* scaled) {
  if (n == 1 && (layer.depth != Depth::Bits8 || layer.row_bytes % 4 == 0)) {
    return readOnly(layer);
  }
  return scaled->fit(downsampled(layer.size, n), layer.depth).map([&] {
    downsample(layer, n, BlockEdges::Transparent, scaled->view());
    return scaled->view();
  });
}

// The bilinear renderer holds the layer's edges, and the corners on the canvas, in 16.16 too.
Result<void> checkBilinearReach(const FrameState& frame, const Rect& canvas) {
  if (frame.input.width > kMaxBilinearLayer || frame.input.height > kMaxBilinearLayer) {
    return invalidArgument("layer",
                           "its size is more than the 32767 pixels a side that can be drawn onto a "
                           "quadrilateral that is not convex; render it at a lower resolution");
  }
  const auto fits = [](std::int32_t fixed, int origin) {
    const std::int64_t shifted = fixed - std::int64_t{origin} * 65536;
    return shifted >= std::numeric_limits<std::int32_t>::min() && shifted <= std::numeric_limits<std::int32_t>::max();
  };
  for (std::size_t i = 1; i < frame.params.size(); ++i) {
    const PF_PointValue& point = frame.params[i].value.point;
    if (!fits(point.point_x, canvas.left) || !fits(point.point_y, canvas.top)) {
      return invalidArgument("canvas",
                             "a corner lies 32768 pixels or more from its upper left corner, farther than a "
                             "quadrilateral that is not convex can be drawn; use a nearer canvas");
    }
  }
  return {};
}

}  // namespace

FrameRender::FrameRender(const ModuleState& module, FrameState& frame, const AnimatedCorners& corners, Size layer_size,
                         const FrameOptions& options)
    : job_{module, frame, layer_size, options} {
  frame.corners = &corners;
  frame.downsample = options.downsample;
  frame.iterated = false;
  frame.render_seconds = 0.0;
  frame.rows.begin(module.workers, module.checking ? 1 : options.threads, options.progress, options.stop);
}

FrameRender::~FrameRender() {
  job_.frame.worlds.clear();
  job_.frame.guard.reset();
  job_.frame.input = {};
  job_.frame.output = {};
}

Result<void> FrameRender::prepare(const ConstImageView& layer, const ImageView& output) {
  FrameState& frame = job_.frame;
  Result<ImageView> input = layerForModule(layer, job_.options.downsample, &frame.scaled_layer);
  if (!input) {
    return tl::unexpected(std::move(input).error());
  }
  frame.depth = layer.depth;
  frame.input = worldOf(*input);
  frame.output = worldOf(output);
  if (job_.module.checking) {
    Result<RowGuard> guard = RowGuard::create(output.size, output.depth);
    if (!guard) {
      return tl::unexpected(std::move(guard).error());
    }
    frame.guard.emplace(std::move(*guard));
    frame.output = worldOf(frame.guard->world());
  }
  fillParameters(&frame, job_.options.time);
  return {};
}

Result<Rect> FrameRender::draw(const Rect& canvas) {
  FrameState& frame = job_.frame;
  Result<Rect> drawn = drawFrame(job_, canvas);
  if (drawn && needsRetry(frame, canvas)) {
    drawn = drawOnShiftedCanvas(job_, canvas).map([&] { return *drawn; });
  }
  if (drawn) {
    frame.rows.report(1.0);
  }
  if (drawn && job_.options.stop.stop_requested()) {
    return failure(ErrorKind::Interrupted, "frame", "the frame was stopped before it was done");
  }
  return drawn;
}

Result<FrameResult> FrameRender::deliver(const Rect& drawn, const Rect& canvas, const ImageView& output) {
  FrameState& frame = job_.frame;
  if (frame.guard) {
    copyPixels(frame.guard->world(), output);
  }
  FrameResult result;
  result.path = frame.iterated || drawn.empty() ? RenderPath::Perspective : RenderPath::Bilinear;
  result.drawn = drawn;
  result.render_seconds = frame.render_seconds;
  if (result.path == RenderPath::Bilinear) {
    return checkBilinearReach(frame, canvas).map([&] { return result; });
  }
  return result;
}

Result<Rect> FrameRender::boundingBox() {
  constexpr int kFar = 1 << 30;
  FrameState& frame = job_.frame;
  frame.input.width = job_.layer_size.width;
  frame.input.height = job_.layer_size.height;
  fillParameters(&frame, job_.options.time);
  return askFrameSetup(job_, {-kFar, -kFar, kFar, kFar});
}

}  // namespace vantorel::host
