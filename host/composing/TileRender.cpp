#include "host/composing/TileRender.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "host/composing/Accumulate.h"
#include "host/composing/PathChoice.h"
#include "host/composing/Resolve.h"
#include "host/composing/ScanEdges.h"
#include "host/composing/Shutter.h"
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
  if (plan.is_whole_move) {
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

Box boxOf(const Rect& rect) {
  return {static_cast<double>(rect.left), static_cast<double>(rect.top), static_cast<double>(rect.right),
          static_cast<double>(rect.bottom)};
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

// What of the layer is handed to the module, and where its corners go on a grid.
struct LayerPart {
  ImageView pixels;
  Corners corners;
};

bool isDrawable(const Corners& corners, RenderPath path) {
  return areCoordinates(corners) && pathOf(corners) == path;
}

// The whole layer, where the effect's numbers hold its corners.
std::optional<LayerPart> wholeLayer(const FramePlan& plan, const TileGrid& grid, double half, const ImageView& layer) {
  if (!plan.whole) {
    return std::nullopt;
  }
  const Corners corners = onGrid(*plan.whole, grid.origin(), grid.samples, half);
  const bool is_drawable = plan.has_source ? isDrawable(corners, plan.path) : areCoordinates(corners);
  return is_drawable ? std::optional(LayerPart{layer, corners}) : std::nullopt;
}

// How far beyond what a part of the picture shows of the layer its pixels' boxes can reach, in layer pixels.
double marginFor(const FramePlan& plan, const ConvexPolygon& shown) {
  constexpr double kLargestBox = 16.0;
  double extent = 1.0;
  for (const Point& point : shown.points()) {
    const Jacobian j = plan.inverse->derivative(point);
    extent = std::max({extent, std::abs(j.xx) + std::abs(j.xy), std::abs(j.yx) + std::abs(j.yy)});
  }
  return 1.0 + std::min(extent, kLargestBox);
}

// The part of the layer that the grid shows, with a margin for the pixels' boxes.
std::optional<LayerPart> shownLayer(const FramePlan& plan, const TileGrid& grid, double half, const ImageView& layer) {
  const Rect& area = grid.area;
  const ConvexPolygon shown =
      plan.outline.cut(Box{area.left - 1.0, area.top - 1.0, area.right + 1.0, area.bottom + 1.0});
  if (shown.empty()) {
    return std::nullopt;
  }
  const Box needed = shown.mappedBy(*plan.inverse).bounds();
  const double margin = marginFor(plan, shown);
  const auto low = [&](double value, int size) {
    return static_cast<int>(std::clamp(std::floor(value - margin), 0.0, size - 1.0));
  };
  const auto high = [&](double value, int size) {
    return static_cast<int>(std::clamp(std::ceil(value + margin), 1.0, static_cast<double>(size)));
  };
  const Rect part{low(needed.left, layer.size.width), low(needed.top, layer.size.height),
                  high(needed.right, layer.size.width), high(needed.bottom, layer.size.height)};
  const std::optional<Corners> image = imageOf(boxOf(part), *plan.map);
  if (!image || part.empty()) {
    return std::nullopt;
  }
  const Corners corners = onGrid(*image, grid.origin(), grid.samples, half);
  if (!isDrawable(corners, RenderPath::Perspective)) {
    return std::nullopt;
  }
  return LayerPart{partOf(layer, part.left, part.top, {part.width(), part.height()}), corners};
}

std::optional<LayerPart> layerFor(const FramePlan& plan, const TileGrid& grid, double half, const ImageView& layer) {
  std::optional<LayerPart> part = wholeLayer(plan, grid, half, layer);
  const bool can_be_cut = plan.path == RenderPath::Perspective && plan.inverse;
  return part || !can_be_cut ? part : shownLayer(plan, grid, half, layer);
}

TileGrid gridOf(const FramePlan& plan, const Tile& tile) {
  TileGrid grid{tile.area, plan.is_whole_move ? 1 : tile.samples, 0, 0};
  if (plan.path == RenderPath::Bilinear) {
    grid.apron_x = kScanApron;
    grid.apron_y = kScanApron;
  } else if (plan.inverse && isOnHorizon(plan, grid.origin())) {
    // Two different distances, so that a horizon that climbs at 45 degrees does not meet the new corner too.
    grid.apron_x = 1;
    grid.apron_y = 2;
  }
  return grid;
}

// Has the module draw the grid, whose upper left corner is that of `canvas`, into `drawn`.
Result<void> drawSamples(const TileSetting& setting, const LayerPart& layer, const Rect& canvas, SampleSpace space,
                         FrameState& frame, const ImageView& drawn) {
  frame.rows.begin(setting.module.workers, 1, setting.options.progress, setting.options.stop);
  frame.depth = drawn.depth;
  frame.placed = layer.corners;
  frame.space = space;
  frame.input = worldOf(layer.pixels);
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
  const FrameJob job{setting.module, frame, layer.pixels.size, setting.options};
  const Result<Rect> rows = drawFrame(job, canvas);
  if (frame.guard && rows) {
    copy(frame.guard->world(), drawn);
  }
  frame.guard.reset();
  frame.worlds.clear();
  return rows ? Result<void>() : tl::unexpected(rows.error());
}

// The samples into the pixels that `visible` holds.
void finishMoment(const FramePlan& plan, const TileGrid& grid, double half, const Rect& visible, const ImageView& drawn,
                  const ImageView& target) {
  const Point origin = grid.origin();
  if (plan.path == RenderPath::Bilinear) {
    const double shift = half / grid.samples;
    extendScan(plan.region.onGrid({origin.x + shift, origin.y + shift}, grid.samples),
               plan.region.onGrid(origin, grid.samples), drawn);
  }
  const ImageView samples =
      partOf(drawn, grid.apron_x, grid.apron_y, {drawn.size.width - grid.apron_x, drawn.size.height - grid.apron_y});
  const CoverageRegion region =
      plan.region.onGrid({static_cast<double>(grid.area.left), static_cast<double>(grid.area.top)}, grid.samples);
  resolve(asConst(samples), grid.samples, region, visible.left - grid.area.left, visible.top - grid.area.top, target);
}

Result<void> drawMoment(const TileSetting& setting, const FramePlan& plan, const Tile& tile, const Rect& visible,
                        TileWorker& worker, const ImageView& target);

// A tile whose corners the effect's numbers do not hold: in quarters, each of which shows less of the layer, then with
// fewer samples. Smaller tiles that still have none show next to nothing of the layer, and stay transparent.
Result<void> drawFarTile(const TileSetting& setting, const FramePlan& plan, const Tile& tile, const Rect& visible,
                         TileWorker& worker, const ImageView& target) {
  constexpr int kSmallestSide = 16;
  if (plan.path == RenderPath::Bilinear && tile.samples == 1) {
    return invalidArgument("canvas",
                           "a corner lies 32768 pixels or more from its upper left corner, farther than a "
                           "quadrilateral that is not convex can be drawn; use a nearer canvas");
  }
  if (tile.samples > 1 && (plan.path == RenderPath::Bilinear || tile.area.width() <= kSmallestSide)) {
    return drawMoment(setting, plan, {tile.area, tile.samples / 2}, visible, worker, target);
  }
  clear(target);
  const int half = tile.area.width() / 2;
  for (int quarter = 0; quarter < 4 && half >= kSmallestSide / 2; ++quarter) {
    const int left = tile.area.left + quarter % 2 * half;
    const int top = tile.area.top + quarter / 2 * half;
    const Rect area{left, top, left + half, top + half};
    const Rect part = common(area, visible);
    if (part.empty() || samplesFor(plan, area) == 0) {
      continue;
    }
    const ImageView view =
        partOf(target, part.left - visible.left, part.top - visible.top, {part.width(), part.height()});
    if (Result<void> done = drawMoment(setting, plan, {area, tile.samples}, part, worker, view); !done) {
      return done;
    }
  }
  return {};
}

// Draws the part of a tile that `visible` holds into `target`, at one moment.
Result<void> drawMoment(const TileSetting& setting, const FramePlan& plan, const Tile& tile, const Rect& visible,
                        TileWorker& worker, const ImageView& target) {
  const Convention convention = conventionOf(plan);
  const TileGrid grid = gridOf(plan, tile);
  const ImageView& source = plan.path == RenderPath::Bilinear ? setting.scanned_layer : setting.layer;
  std::optional<LayerPart> layer = layerFor(plan, grid, convention.half, source);
  Rect canvas{0, 0, grid.size().width, grid.size().height};
  if (!layer && grid.samples == 1 && plan.path == RenderPath::Perspective && !plan.has_source) {
    // The corners as they were given are always held.
    layer = LayerPart{source, onGrid(plan.corners, {}, 1, convention.half)};
    const int left = grid.area.left - grid.apron_x;
    const int top = grid.area.top - grid.apron_y;
    canvas = {left, top, left + canvas.right, top + canvas.bottom};
  }
  if (!layer) {
    return drawFarTile(setting, plan, tile, visible, worker, target);
  }
  const bool is_in_place = grid.samples == 1 && grid.size() == target.size;
  ImageView drawn = target;
  if (!is_in_place) {
    constexpr int kSide = kTileSide + 2 * kScanApron;
    if (Result<void> fitted = worker.samples.fit({kSide, kSide}, target.depth); !fitted) {
      return fitted;
    }
    drawn = partOf(worker.samples.view(), 0, 0, grid.size());
  }
  if (Result<void> done = drawSamples(setting, *layer, canvas, convention.space, worker.frame, drawn); !done) {
    return done;
  }
  finishMoment(plan, grid, convention.half, visible, drawn, target);
  return {};
}

// The mean of all moments.
Result<void> drawBlurred(const TileSetting& setting, const Tile& tile, const Rect& visible, TileWorker& worker,
                         const ImageView& target) {
  const auto fitted = worker.moment.fit({kTileSide, kTileSide}, target.depth).and_then([&] {
    return worker.sums.fit({kTileSide, kTileSide}, Depth::Float);
  });
  if (!fitted) {
    return fitted;
  }
  const ImageView moment = partOf(worker.moment.view(), 0, 0, target.size);
  const ImageView sums = partOf(worker.sums.view(), 0, 0, target.size);
  clear(sums);
  const Tile part{tile.area, samplesOfMoment(tile.samples, setting.moments.size())};
  for (const FramePlan& plan : setting.moments) {
    if (samplesFor(plan, tile.area) == 0) {
      continue;
    }
    if (Result<void> done = drawMoment(setting, plan, part, visible, worker, moment); !done) {
      return done;
    }
    addTo(sums, asConst(moment));
  }
  meanOf(asConst(sums), setting.moments.size(), target);
  return {};
}

}  // namespace

Result<void> drawTile(const TileSetting& setting, const Tile& tile, TileWorker& worker) {
  const Rect visible = common(tile.area, setting.canvas);
  const ImageView target = partOf(setting.output, visible.left - setting.canvas.left, visible.top - setting.canvas.top,
                                  {visible.width(), visible.height()});
  if (tile.samples == 0) {
    clear(target);
    return {};
  }
  return setting.moments.size() == 1 ? drawMoment(setting, setting.moments.front(), tile, visible, worker, target)
                                     : drawBlurred(setting, tile, visible, worker, target);
}

}  // namespace vantorel::host
