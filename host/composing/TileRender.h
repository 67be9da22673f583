// Draws one tile.
#pragma once

#include "host/composing/TiledFrame.h"

namespace vantorel::host {

// The parameters that all tiles of a frame share.
struct TileSetting {
  const ModuleState& module;
  std::span<const FramePlan> moments;    // one or more
  const FrameOptions& options;           // for the tiles: one thread, no progress, full resolution
  const FrameOptions& standard_options;  // the same at standard quality
  ImageView layer;                       // for the perspective path
  ImageView scanned_layer;               // for the bilinear path; may have 16 bits although the output has 8
  Rect canvas;
  Rect reached;  // the part of the canvas that the picture can reach
  ImageView output;
};

// Draws the part of a tile that the picture can reach into the output; the rest is left unchanged.
Result<void> drawTile(const TileSetting& setting, const Tile& tile, TileWorker& worker);

}  // namespace vantorel::host
