// The part of the layer that a tile is drawn from, and where its corners are.
#pragma once

#include <optional>

#include "host/composing/FramePlan.h"

namespace vantorel::host {

// The samples of a part of the output: a grid with `samples` per pixel and axis, extended on every side of the area by
// `apron_x` columns and `apron_y` rows.
struct TileGrid {
  Rect area;  // in output pixels
  int samples = 1;
  int apron_x = 0;
  int apron_y = 0;

  Size size() const { return {area.width() * samples + 2 * apron_x, area.height() * samples + 2 * apron_y}; }
  // Where the grid begins, in pixels.
  Point origin() const {
    return {area.left - static_cast<double>(apron_x) / samples, area.top - static_cast<double>(apron_y) / samples};
  }
};

// The grid for a part of a tile, with the apron that the plan needs there.
TileGrid gridOf(const FramePlan& plan, const Rect& area, int samples);

// Corners in the coordinates of a grid that begins at `origin`, minus `half` samples: 0.5 where the effect's positions,
// which are measured from pixel centres, have to be compensated for, else 0.
Corners onGrid(const Corners& corners, const Point& origin, int samples, double half);

// The part of the layer that the module is given for a tile, whichever part of the tile is drawn.
struct TileLayer {
  ImageView pixels;
  Corners corners;  // of these pixels, on the plane
  // The module is given the corners unchanged and a canvas at its position in the plane, with one sample per pixel,
  // because the corners fit into 16.16 only in these coordinates.
  bool is_on_plane = false;
};

// Empty if there is no part whose corners fit into 16.16. `half` is that of onGrid.
std::optional<TileLayer> layerFor(const FramePlan& plan, const Tile& tile, double half, const ImageView& layer);

}  // namespace vantorel::host
