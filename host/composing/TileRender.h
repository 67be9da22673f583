// The drawing of one tile.
#pragma once

#include "host/composing/TiledFrame.h"

namespace vantorel::host {

// What all tiles of a frame share.
struct TileSetting {
  const ModuleState& module;
  std::span<const FramePlan> moments;    // one or more
  const FrameOptions& options;           // those of the tiles: one thread, no progress, full resolution
  const FrameOptions& standard_options;  // the same at standard quality
  ImageView layer;                       // as the perspective path sees it
  ImageView scanned_layer;               // as the bilinear path sees it, in 16 bits perhaps when the output is in 8
  Rect canvas;
  Rect reached;  // what of the canvas the picture can reach
  ImageView output;
};

// Draws the part of a tile that the picture can reach into the output; the rest is left as it is.
Result<void> drawTile(const TileSetting& setting, const Tile& tile, TileWorker& worker);

}  // namespace vantorel::host
