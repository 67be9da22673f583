#include "host/composing/TiledFrame.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>
#include <utility>

#include "host/callbacks/CallContext.h"
#include "host/composing/LayerPart.h"
#include "host/composing/TileRender.h"
#include "host/composing/VertexFactor.h"
#include "host/composing/VertexLayer.h"
#include "platform/ClearPixels.h"

namespace vantorel::host {

namespace {

// The part of the layer that the canvas shows through the bilinear renderer at any moment.
Rect scannedPart(std::span<const FramePlan> plans, const Rect& canvas) {
  Rect part;
  for (const FramePlan& plan : plans) {
    if (plan.path == RenderPath::Bilinear) {
      part = united(part, scannedPart(plan, canvas));
    }
  }
  return part;
}

// The pixels of a canvas that any moment's picture can reach.
Rect reachedOn(const Rect& canvas, std::span<const FramePlan> plans) {
  const auto inside = [](double value, int low, int high) {
    return static_cast<int>(std::clamp(value, static_cast<double>(low), static_cast<double>(high)));
  };
  Rect reached;
  for (const FramePlan& plan : plans) {
    if (!plan.region.empty()) {
      const Box box = plan.region.bounds();
      const Rect pixels{inside(std::floor(box.left), canvas.left, canvas.right),
                        inside(std::floor(box.top), canvas.top, canvas.bottom),
                        inside(std::ceil(box.right), canvas.left, canvas.right),
                        inside(std::ceil(box.bottom), canvas.top, canvas.bottom)};
      reached = united(reached, pixels);
    }
  }
  return reached;
}

std::uint64_t bytesOf(const ImageView& view) {
  return static_cast<std::uint64_t>(view.size.width) * static_cast<std::uint64_t>(view.size.height) *
         bytesPerPixel(view.depth);
}

FrameOptions tileOptions(const FrameOptions& options) {
  FrameOptions tile;
  tile.time = options.time;
  tile.quality = options.quality;
  tile.protocol = options.protocol;
  tile.threads = 1;
  tile.stop = options.stop;
  return tile;
}

}  // namespace

TileWorker& TileStore::take() {
  const std::lock_guard lock(mutex_);
  if (idle_.empty()) {
    workers_.push_back(std::make_unique<TileWorker>());
    idle_.reserve(workers_.size());
    return *workers_.back();
  }
  TileWorker& worker = *idle_.back();
  idle_.pop_back();
  return worker;
}

void TileStore::giveBack(TileWorker& worker) {
  const std::lock_guard lock(mutex_);
  idle_.push_back(&worker);
}

TiledFrame::TiledFrame(const ModuleState& module, TileStore& store, const FrameOptions& options, const ImageView& layer)
    : module_(module),
      store_(store),
      tile_options_(tileOptions(options)),
      standard_options_(tile_options_),
      layer_(layer),
      scanned_layer_(layer) {
  standard_options_.quality = Quality::Standard;
}

Result<void> TiledFrame::draw(RowScheduler& scheduler, const Rect& canvas, const ImageView& output) {
  canvas_ = canvas;
  reached_ = reachedOn(canvas, store_.plans);
  output_ = output;
  Result<Rect> enlarged = prepareEnlargedLayer();
  if (!enlarged) {
    return tl::unexpected(std::move(enlarged).error());
  }
  enlarged_part_ = *enlarged;
  collectTiles(canvas, PlannedSamples(store_.plans), &store_.tiles);
  CallContext context(module_.resources);
  std::int32_t code =
      scheduler.run(context, enlarged_part_.top, enlarged_part_.bottom, 0.0, 0.0, {enlargeLayerRow, this});
  if (code == ERR_NONE) {
    code = scheduler.run(context, canvas.top, canvas.bottom, 0.0, 0.0, {clearRow, this});
  }
  if (code == ERR_NONE) {
    code = scheduler.run(context, 0, static_cast<std::int32_t>(store_.tiles.size()), 0.0, 1.0, {runTile, this});
  }
  if (error_) {
    return tl::unexpected(std::move(*error_));
  }
  if (code == kCodeInterrupted) {
    return failure(ErrorKind::Interrupted, "frame", "the frame was stopped before it was done");
  }
  if (code != ERR_NONE && !scheduler.progressFailure()) {
    return failure(ErrorKind::OutOfMemory, "frame", "out of memory for its tiles; use fewer threads");
  }
  return {};
}

Result<Rect> TiledFrame::prepareEnlargedLayer() {
  enlargement_ = vertexFactorFor(store_.plans);
  if (enlargement_ == 0) {
    return Rect{};
  }
  // The renderer's mean of 8-bit values is a quarter of a level too dark on average, which would visibly shift the
  // edges between pixels that are magnified so much.
  const Depth depth = enlargement_ > 2 && layer_.depth == Depth::Bits8 ? Depth::Bits16 : layer_.depth;
  const Size size{enlargement_ * layer_.size.width, enlargement_ * layer_.size.height};
  return store_.vertex_layer.fit(size, depth).map([&] {
    scanned_layer_ = store_.vertex_layer.view();
    return scannedPart(store_.plans, canvas_);
  });
}

std::int32_t TiledFrame::enlargeLayerRow(const void* self, std::int32_t y) {
  const auto& frame = *static_cast<const TiledFrame*>(self);
  const Rect& part = frame.enlarged_part_;
  enlargeToVertices(asConst(frame.layer_), frame.enlargement_, {part.left, y, part.right, y + 1}, frame.scanned_layer_);
  return ERR_NONE;
}

// What lies beside the picture, in runs as long as there are: past the caches they are cleared fastest.
std::int32_t TiledFrame::clearRow(const void* self, std::int32_t y) {
  const auto& frame = *static_cast<const TiledFrame*>(self);
  const Rect& canvas = frame.canvas_;
  const Rect& reached = frame.reached_;
  const StorePolicy policy = storePolicyFor(bytesOf(frame.output_));
  const auto clear = [&](int left, int right) {
    clearBytes(frame.output_.pixel(left - canvas.left, y - canvas.top),
               static_cast<std::size_t>(right - left) * bytesPerPixel(frame.output_.depth), policy);
  };
  if (y < reached.top || y >= reached.bottom) {
    clear(canvas.left, canvas.right);
  } else {
    clear(canvas.left, reached.left);
    clear(reached.right, canvas.right);
  }
  return ERR_NONE;
}

std::int32_t TiledFrame::runTile(const void* self, std::int32_t index) {
  const auto& frame = *static_cast<const TiledFrame*>(self);
  TileWorker& worker = frame.store_.take();
  Result<void> done = frame.drawTile(frame.store_.tiles[static_cast<std::size_t>(index)], worker);
  frame.store_.giveBack(worker);
  if (done) {
    return ERR_NONE;
  }
  const std::lock_guard lock(frame.mutex_);
  if (!frame.error_) {
    frame.error_ = std::move(done).error();
  }
  return kCodeException;
}

Result<void> TiledFrame::drawTile(const Tile& tile, TileWorker& worker) const {
  return host::drawTile(
      {module_, store_.plans, tile_options_, standard_options_, layer_, scanned_layer_, canvas_, reached_, output_},
      tile, worker);
}

}  // namespace vantorel::host
