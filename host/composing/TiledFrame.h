// The drawing of a frame in tiles.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "host/composing/FramePlan.h"
#include "host/frames/FrameState.h"
#include "host/module/ModuleState.h"

namespace vantorel::host {

// What one thread draws tiles with.
struct TileWorker {
  FrameState frame;
  Image samples;
  Image fine;    // a tile's pixels in 16 bits, where the layer's 8 are too coarse
  Image moment;  // those at one moment
  Image sums;    // those of all moments, in float
};

// What is kept from frame to frame. As many workers are made as threads have drawn at once.
class TileStore {
 public:
  std::vector<double> moments;   // in seconds
  std::vector<FramePlan> plans;  // one a moment
  std::vector<Tile> tiles;
  Image vertex_layer;  // for the bilinear path

  // A worker that nobody uses, until it is given back. From any thread.
  TileWorker& take();
  void giveBack(TileWorker& worker);

 private:
  std::mutex mutex_;
  std::vector<std::unique_ptr<TileWorker>> workers_;
  std::vector<TileWorker*> idle_;
};

// Draws tiles through the module, each as a canvas of its own, on the threads of the frame's scheduler, and puts them
// together. The bits depend neither on the canvas nor on the threads. The arguments must outlive it.
class TiledFrame {
 public:
  // `layer` is at the frame's resolution, and the store has the plans.
  TiledFrame(const ModuleState& module, TileStore& store, const FrameOptions& options, const ImageView& layer);

  // Draws the canvas, which is at the frame's resolution, into `output`, which is of its size and of the layer's depth.
  Result<void> draw(RowScheduler& scheduler, const Rect& canvas, const ImageView& output);

 private:
  static std::int32_t enlargeLayerRow(const void* self, std::int32_t y);
  static std::int32_t clearRow(const void* self, std::int32_t y);
  static std::int32_t runTile(const void* self, std::int32_t index);
  Result<void> drawTile(const Tile& tile, TileWorker& worker) const;
  // Makes room for the layer enlarged for the bilinear path; returns what of the layer it has to hold.
  Result<Rect> prepareEnlargedLayer();

  const ModuleState& module_;
  TileStore& store_;
  FrameOptions tile_options_;
  FrameOptions standard_options_;
  ImageView layer_;
  ImageView scanned_layer_;  // for the bilinear path
  int enlargement_ = 0;      // of that; 0 when there is none
  Rect enlarged_part_;       // in pixels of the layer
  Rect canvas_;
  Rect reached_;  // what of the canvas any moment can reach
  ImageView output_;
  mutable std::mutex mutex_;
  mutable std::optional<Error> error_;  // the first
};

}  // namespace vantorel::host
