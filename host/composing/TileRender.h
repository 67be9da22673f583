// The drawing of one tile.
#pragma once

#include "host/composing/TiledFrame.h"

namespace vantorel::host {

// What all tiles of a frame share.
struct TileSetting {
  const ModuleState& module;
  std::span<const FramePlan> moments;  // one or more
  const FrameOptions& options;         // those of the tiles: one thread, no progress, full resolution
  ImageView layer;                     // as the perspective path sees it
  ImageView scanned_layer;             // as the bilinear path sees it, in 16 bits perhaps when the output is in 8
  Rect canvas;
  ImageView output;
};

// Draws the part of a tile that lies on the canvas into the output.
Result<void> drawTile(const TileSetting& setting, const Tile& tile, TileWorker& worker);

}  // namespace vantorel::host
