// What of the layer a tile is drawn from, and where its corners go.
#pragma once

#include <optional>

#include "host/composing/FramePlan.h"

namespace vantorel::host {

// The samples of a part of the output: a grid of `samples` a pixel, whose first column and row lie `apron_x` and
// `apron_y` samples before the area.
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

// The grid of a part of a tile, with the apron that the plan needs there.
TileGrid gridOf(const FramePlan& plan, const Rect& area, int samples);

// Corners in the coordinates of a grid that begins at `origin`, moved by -half a sample where the effect counts from
// centres.
Corners onGrid(const Corners& corners, const Point& origin, int samples, double half);

// What of the layer is handed to the module for a tile, whatever part of the tile is drawn.
struct TileLayer {
  ImageView pixels;
  Corners corners;  // of these pixels, on the plane
  // The module is given the corners on the plane, at a sample a pixel, and a canvas that lies there: the effect's
  // numbers hold the corners only as they were given.
  bool is_on_plane = false;
};

// None where the effect's numbers do not hold the corners of any. `half` is what onGrid takes from the corners.
std::optional<TileLayer> layerFor(const FramePlan& plan, const Tile& tile, double half, const ImageView& layer);

}  // namespace vantorel::host
