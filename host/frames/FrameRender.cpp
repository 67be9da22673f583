#include "host/frames/FrameRender.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "host/Downsample.h"
#include "host/composing/LayerPart.h"
#include "host/composing/Shutter.h"
#include "host/frames/DegenerateMapRetry.h"
#include "host/frames/FrameParameters.h"
#include "support/FixedUnits.h"

namespace vantorel::host {

namespace {

constexpr int kMaxBilinearLayer = 32767;  // pixels a side

void copyPixels(const ImageView& from, const ImageView& to) {
  const std::size_t row_bytes = static_cast<std::size_t>(to.size.width) * bytesPerPixel(to.depth);
  for (int y = 0; y < to.size.height; ++y) {
    std::memcpy(to.row(y), from.row(y), row_bytes);
  }
}

// The interface has no constant worlds; the module is trusted not to write to the layer.
ImageView readOnly(const ConstImageView& view) {
  return {const_cast<std::byte*>(view.data), view.row_bytes, view.size, view.depth};
}

// The layer in a form that the module can read: the caller's own, or a copy in `scaled`, reduced by n. An 8-bit layer
// is also copied if its row stride is not a whole number of pixels, because modules step between rows in 4-byte words.
Result<ImageView> layerForModule(const ConstImageView& layer, int n, BlockEdges edges, Image* scaled) {
  if (n == 1 && (layer.depth != Depth::Bits8 || layer.row_bytes % 4 == 0)) {
    return readOnly(layer);
  }
  return scaled->fit(downsampled(layer.size, n), layer.depth).map([&] {
    downsample(layer, n, edges, scaled->view());
    return scaled->view();
  });
}

// The corners at a time, in pixels at 1/n, rounded to 16.16 as the module receives them, so that times that differ only
// by rounding errors give the same picture.
Corners cornersAt(const AnimatedCorners& corners, double seconds, double n) {
  const Corners full = corners.at(seconds);
  const auto scaled = [&](const Point& p) {
    return Point{doubleFromFixed(fixedFromPixels(p.x / n)), doubleFromFixed(fixedFromPixels(p.y / n))};
  };
  return {scaled(full.upper_left), scaled(full.upper_right), scaled(full.lower_left), scaled(full.lower_right)};
}

// The rows that a region reaches, at the canvas's full width, in canvas pixels.
Rect rowsOf(const CoverageRegion& region, const Rect& canvas) {
  const Box box = region.bounds();
  const auto on_canvas = [&](double y) {
    return static_cast<int>(std::clamp(y, static_cast<double>(canvas.top), static_cast<double>(canvas.bottom))) -
           canvas.top;
  };
  const Rect rows{0, on_canvas(std::floor(box.top)), canvas.width(), on_canvas(std::ceil(box.bottom))};
  const bool is_beside = box.right <= canvas.left || box.left >= canvas.right;
  return region.empty() || rows.empty() || is_beside ? Rect{} : rows;
}

Rect rowsOf(const std::vector<FramePlan>& moments, const Rect& canvas) {
  Rect rows;
  for (const FramePlan& plan : moments) {
    rows = united(rows, rowsOf(plan.region, canvas));
  }
  return rows;
}

// The bilinear renderer also stores the layer's edges, and the corners on the canvas, in 16.16.
Result<void> checkBilinearReach(const FrameState& frame, const Rect& canvas) {
  if (frame.input.width > kMaxBilinearLayer || frame.input.height > kMaxBilinearLayer) {
    return invalidArgument("layer",
                           "its size is more than the 32767 pixels a side that can be drawn onto a "
                           "quadrilateral that is not convex; render it at a lower resolution");
  }
  const auto fits = [](std::int32_t fixed, int origin) {
    const std::int64_t shifted = fixed - std::int64_t{origin} * kFixedOne;
    return shifted >= std::numeric_limits<std::int32_t>::min() && shifted <= std::numeric_limits<std::int32_t>::max();
  };
  for (std::size_t i = 1; i < frame.params.size(); ++i) {
    const PF_PointValue& point = frame.params[i].value.point;
    if (!fits(point.point_x, canvas.left) || !fits(point.point_y, canvas.top)) {
      return cornerOutOfReach();
    }
  }
  return {};
}

}  // namespace

FrameRender::FrameRender(const ModuleState& module, FrameState& frame, TileStore& tiles, const AnimatedCorners& corners,
                         const AnimatedCorners* source, Size layer_size, const FrameOptions& options)
    : job_{module, frame, layer_size, options}, tiles_(tiles) {
  frame.corners = &corners;
  frame.source = source;
  frame.placed.reset();
  frame.space = SampleSpace::Centres;
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

Result<FrameResult> FrameRender::render(const ConstImageView& layer, const Rect& canvas, const ImageView& output) {
  const FrameOptions& options = job_.options;
  FrameState& frame = job_.frame;
  const BlockEdges block_edges = edgesOf(options) == Edges::Crisp ? BlockEdges::LeftOut : BlockEdges::Transparent;
  Result<ImageView> input = layerForModule(layer, options.downsample, block_edges, &frame.scaled_layer);
  if (!input) {
    return tl::unexpected(std::move(input).error());
  }
  frame.depth = layer.depth;
  frame.input = worldOf(*input);
  if (Result<void> planned = planMoments(layer.size, input->size); !planned) {
    return tl::unexpected(std::move(planned).error());
  }
  if (tiles_.plans.size() > 1 || needsTiles(options, tiles_.plans.front())) {
    return renderInTiles(*input, canvas, output);
  }
  place(tiles_.plans.front());
  return prepare(output).and_then([&] { return draw(canvas); }).and_then([&](const Rect& drawn) {
    return deliver(drawn, canvas, output);
  });
}

Result<void> FrameRender::planMoments(Size layer_size, Size scaled_size) {
  const FrameOptions& options = job_.options;
  const FrameState& frame = job_.frame;
  const double n = options.downsample;
  if (frame.source != nullptr && options.placement == Placement::Centres) {
    return invalidArgument("source", "it requires the outline placement; use that placement");
  }
  momentsOf(*frame.corners, frame.source, options, &tiles_.moments);
  tiles_.plans.clear();
  for (const double seconds : tiles_.moments) {
    const auto source = frame.source != nullptr ? std::optional(cornersAt(*frame.source, seconds, n)) : std::nullopt;
    tiles_.plans.emplace_back(cornersAt(*frame.corners, seconds, n), source, layer_size.width / n,
                              layer_size.height / n, scaled_size, options);
    if (!tiles_.plans.back().hasMap()) {
      return invalidArgument("source",
                             "it and the corners must both be strictly convex quadrilaterals, without a "
                             "corner that is on a line with its neighbours; move that corner");
    }
  }
  return {};
}

void FrameRender::place(const FramePlan& plan) {
  if (job_.options.placement == Placement::Centres || plan.is_whole_move) {
    return;
  }
  const auto moved = [](const Point& p) { return Point{p.x - 0.5, p.y - 0.5}; };
  const Corners& corners = plan.corners;
  job_.frame.placed = Corners{moved(corners.upper_left), moved(corners.upper_right), moved(corners.lower_left),
                              moved(corners.lower_right)};
  job_.frame.space = SampleSpace::Outline;
}

Result<FrameResult> FrameRender::renderInTiles(const ImageView& layer, const Rect& canvas, const ImageView& output) {
  const auto begin = std::chrono::steady_clock::now();
  TiledFrame tiles(job_.module, tiles_, job_.options, layer);
  return tiles.draw(job_.frame.rows, canvas, output).and_then([&] { return endOfFrame(); }).map([&] {
    FrameResult result;
    result.path = tiles_.plans[tiles_.plans.size() / 2].path;
    result.drawn = rowsOf(tiles_.plans, canvas);
    result.render_seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    return result;
  });
}

Result<void> FrameRender::prepare(const ImageView& output) {
  FrameState& frame = job_.frame;
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
  if (!drawn) {
    return drawn;
  }
  return endOfFrame().map([&] { return *drawn; });
}

Result<void> FrameRender::endOfFrame() {
  RowScheduler& rows = job_.frame.rows;
  rows.report(1.0);
  if (rows.stopRequested()) {
    return failure(ErrorKind::Interrupted, "frame", "the frame was stopped before it was done");
  }
  return {};
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
  momentsOf(*frame.corners, frame.source, job_.options, &tiles_.moments);
  Rect box;
  for (const double seconds : tiles_.moments) {
    frame.placed = frame.corners->at(seconds);
    fillParameters(&frame, job_.options.time);
    Result<Rect> asked = askFrameSetup(job_, {-kFar, -kFar, kFar, kFar});
    if (!asked) {
      return asked;
    }
    box = united(box, *asked);
  }
  return box;
}

Result<Rect> FrameRender::neededPart(const Rect& canvas) {
  const int n = job_.options.downsample;
  const Size full = job_.layer_size;
  return planMoments(full, downsampled(full, n)).map([&] {
    Rect part;
    for (const FramePlan& plan : tiles_.plans) {
      part = united(part, host::neededPart(plan, canvas));
    }
    return Rect{part.left * n, part.top * n, std::min(part.right * n, full.width),
                std::min(part.bottom * n, full.height)};
  });
}

}  // namespace vantorel::host
