// Draws a frame in tiles.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "host/composing/FramePlan.h"
#include "host/frames/FrameState.h"
#include "host/module/ModuleState.h"

namespace vantorel::host {

// The buffers with which one thread draws tiles.
struct TileWorker {
  FrameState frame;
  Image samples;
  Image fine;    // a tile's pixels in 16 bits, when the layer's 8 bits are too coarse
  Image moment;  // a tile's pixels at one moment
  Image sums;    // the sums over all moments, in float
};

// State kept from frame to frame. There are as many workers as threads have drawn at the same time.
class TileStore {
 public:
  std::vector<double> moments;   // in seconds
  std::vector<FramePlan> plans;  // one per moment
  std::vector<Tile> tiles;
  Image vertex_layer;  // for the bilinear path

  // Takes an idle worker, until it is given back. Can be called from any thread.
  TileWorker& take();
  void giveBack(TileWorker& worker);

 private:
  std::mutex mutex_;
  std::vector<std::unique_ptr<TileWorker>> workers_;
  std::vector<TileWorker*> idle_;
};

// Draws each tile through the module on a canvas of its own, on the threads of the frame's scheduler, and assembles
// them. The bits depend neither on the canvas nor on the threads. The arguments must outlive it.
class TiledFrame {
 public:
  // `layer` is at the frame's resolution, and the store already holds the plans.
  TiledFrame(const ModuleState& module, TileStore& store, const FrameOptions& options, const ImageView& layer);

  // Draws the canvas, which is at the frame's resolution, into `output`, which has its size and the layer's depth.
  Result<void> draw(RowScheduler& scheduler, const Rect& canvas, const ImageView& output);

 private:
  static std::int32_t enlargeLayerRow(const void* self, std::int32_t y);
  static std::int32_t clearRow(const void* self, std::int32_t y);
  static std::int32_t runTile(const void* self, std::int32_t index);
  Result<void> drawTile(const Tile& tile, TileWorker& worker) const;
  // Allocates the enlarged layer for the bilinear path; returns the part of the layer that must be filled in.
  Result<Rect> prepareEnlargedLayer();

  const ModuleState& module_;
  TileStore& store_;
  FrameOptions tile_options_;
  FrameOptions standard_options_;
  ImageView layer_;
  ImageView scanned_layer_;  // for the bilinear path
  int enlargement_ = 0;      // its factor; 0 when there is none
  Rect enlarged_part_;       // the part filled in, in pixels of the layer
  Rect canvas_;
  Rect reached_;  // what of the canvas any moment can reach
  ImageView output_;
  mutable std::mutex mutex_;
  mutable std::optional<Error> error_;  // the first one
};

}  // namespace vantorel::host
