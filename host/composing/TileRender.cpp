#include "host/composing/TileRender.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "host/composing/Resolve.h"
#include "host/composing/ScanEdges.h"
#include "host/frames/FrameParameters.h"
#include "host/frames/FrameProtocols.h"

namespace vantorel::host {

namespace {

// A whole move needs neither the outline's half pixels nor more than one sample.
struct Convention {
  SampleSpace space;
  double half;  // taken from the corners, in samples
};

Convention conventionOf(const FramePlan& plan) {
  if (plan.path == RenderPath::Bilinear) {
    return {SampleSpace::Centres, 0.5};
  }
  if (plan.isWholeMove()) {
    return {SampleSpace::Centres, 0.0};
  }
  return {plan.edges == Edges::Crisp ? SampleSpace::OutlineExtended : SampleSpace::Outline, 0.5};
}

// The samples of a tile: a grid of `samples` a pixel, whose first column and row lie `apron` before the tile.
struct TileGrid {
  Rect area;
  int samples;
  int apron_x;
  int apron_y;

  Size size() const { return {area.width() * samples + 2 * apron_x, area.height() * samples + 2 * apron_y}; }
  // Where the grid begins, in pixels.
  Point origin() const {
    return {area.left - static_cast<double>(apron_x) / samples, area.top - static_cast<double>(apron_y) / samples};
  }
};

// Corners in the coordinates of a grid that begins at `origin`, moved by -half a sample where the effect counts from
// centres.
Corners onGrid(const Corners& corners, const Point& origin, int samples, double half) {
  const auto move = [&](const Point& p) {
    return Point{(p.x - origin.x) * samples - half, (p.y - origin.y) * samples - half};
  };
  return {move(corners.upper_left), move(corners.upper_right), move(corners.lower_left), move(corners.lower_right)};
}

bool areCoordinates(const Corners& corners) {
  bool fit = true;
  for (std::size_t i = 0; i < kCornerCount; ++i) {
    fit = fit && isCoordinate(corners[i].x) && isCoordinate(corners[i].y);
  }
  return fit;
}

// Whether the map's horizon runs through a point: a module that normalises its map there has none to draw by.
bool isOnHorizon(const FramePlan& plan, const Point& p) {
  constexpr double kRounding = 1e-9;
  return std::abs(plan.inverse->weight(p)) < kRounding * std::abs(plan.inverse->weight(plan.outline.middle()));
}

TileGrid gridOf(const FramePlan& plan, const Tile& tile, double half) {
  TileGrid grid{tile.area, plan.isWholeMove() ? 1 : tile.samples, 0, 0};
  if (plan.path == RenderPath::Bilinear) {
    grid.apron_x = kScanApron;
    grid.apron_y = kScanApron;
  }
  while (grid.samples > 1 && !areCoordinates(onGrid(plan.corners, grid.origin(), grid.samples, half))) {
    grid.samples /= 2;
  }
  if (plan.path == RenderPath::Perspective && isOnHorizon(plan, grid.origin())) {
    // Two different distances, so that a horizon that climbs at 45 degrees does not meet the new corner too.
    grid.apron_x = 1;
    grid.apron_y = 2;
  }
  return grid;
}

ImageView partOf(const ImageView& view, int x, int y, Size size) {
  return {view.pixel(x, y), view.row_bytes, size, view.depth};
}

Rect common(const Rect& a, const Rect& b) {
  return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

void clear(const ImageView& view) {
  for (int y = 0; y < view.size.height; ++y) {
    std::memset(view.row(y), 0, bytesPerPixel(view.depth) * static_cast<std::size_t>(view.size.width));
  }
}

void copy(const ImageView& from, const ImageView& to) {
  for (int y = 0; y < to.size.height; ++y) {
    std::memcpy(to.row(y), from.row(y), bytesPerPixel(to.depth) * static_cast<std::size_t>(to.size.width));
  }
}

// Has the module draw the grid into `drawn`.
Result<void> drawSamples(const TileSetting& setting, const TileGrid& grid, const Convention& convention,
                         FrameState& frame, const ImageView& drawn) {
  const Point origin = grid.origin();
  Rect canvas{0, 0, drawn.size.width, drawn.size.height};
  Corners corners = onGrid(setting.plan.corners, origin, grid.samples, convention.half);
  if (!areCoordinates(corners)) {
    if (setting.plan.path == RenderPath::Bilinear) {
      return invalidArgument("canvas",
                             "a corner lies 32768 pixels or more from its upper left corner, farther than a "
                             "quadrilateral that is not convex can be drawn; use a nearer canvas");
    }
    // With one sample a pixel, the corners as they were given always do.
    const int left = grid.area.left - grid.apron_x;
    const int top = grid.area.top - grid.apron_y;
    canvas = {left, top, left + drawn.size.width, top + drawn.size.height};
    corners = onGrid(setting.plan.corners, {}, 1, convention.half);
  }
  frame.rows.begin(setting.module.workers, 1, setting.options.progress, setting.options.stop);
  frame.depth = drawn.depth;
  frame.placed = corners;
  frame.space = convention.space;
  frame.input = worldOf(setting.layer);
  frame.output = worldOf(drawn);
  frame.iterated = false;
  if (setting.module.checking) {
    Result<RowGuard> guard = RowGuard::create(drawn.size, drawn.depth);
    if (!guard) {
      return tl::unexpected(std::move(guard).error());
    }
    frame.guard.emplace(std::move(*guard));
    frame.output = worldOf(frame.guard->world());
  }
  fillParameters(&frame, setting.options.time);
  const FrameJob job{setting.module, frame, setting.layer.size, setting.options};
  const Result<Rect> rows = drawFrame(job, canvas);
  if (frame.guard && rows) {
    copy(frame.guard->world(), drawn);
  }
  frame.guard.reset();
  frame.worlds.clear();
  return rows ? Result<void>() : tl::unexpected(rows.error());
}

}  // namespace

Result<void> drawTile(const TileSetting& setting, const Tile& tile, TileWorker& worker) {
  const FramePlan& plan = setting.plan;
  const Rect visible = common(tile.area, setting.canvas);
  const ImageView target = partOf(setting.output, visible.left - setting.canvas.left, visible.top - setting.canvas.top,
                                  {visible.width(), visible.height()});
  if (tile.samples == 0) {
    clear(target);
    return {};
  }
  const Convention convention = conventionOf(plan);
  const TileGrid grid = gridOf(plan, tile, convention.half);
  const bool is_in_place = grid.samples == 1 && grid.size() == target.size;
  ImageView drawn = target;
  if (!is_in_place) {
    constexpr int kSide = kTileSide + 2 * kScanApron;
    if (Result<void> fitted = worker.samples.fit({kSide, kSide}, target.depth); !fitted) {
      return fitted;
    }
    drawn = partOf(worker.samples.view(), 0, 0, grid.size());
  }
  if (Result<void> done = drawSamples(setting, grid, convention, worker.frame, drawn); !done) {
    return done;
  }
  const Point origin = grid.origin();
  const auto shifted = [&](double half) {
    return plan.region.onGrid({origin.x + half / grid.samples, origin.y + half / grid.samples}, grid.samples);
  };
  if (plan.path == RenderPath::Bilinear) {
    extendScan(shifted(convention.half), shifted(0.0), drawn);
  }
  const ImageView samples =
      partOf(drawn, grid.apron_x, grid.apron_y, {drawn.size.width - grid.apron_x, drawn.size.height - grid.apron_y});
  const CoverageRegion region =
      plan.region.onGrid({static_cast<double>(grid.area.left), static_cast<double>(grid.area.top)}, grid.samples);
  resolve(asConst(samples), grid.samples, region, visible.left - grid.area.left, visible.top - grid.area.top, target);
  return {};
}

}  // namespace vantorel::host
