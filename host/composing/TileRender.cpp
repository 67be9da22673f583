#include "host/composing/TileRender.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "host/composing/Accumulate.h"
#include "host/composing/Resolve.h"
#include "host/composing/ScanEdges.h"
#include "host/composing/Shutter.h"
#include "host/composing/TileLayer.h"
#include "host/composing/VertexLayer.h"
#include "host/frames/FrameParameters.h"
#include "host/frames/FrameProtocols.h"
#include "platform/ClearPixels.h"

namespace vantorel::host {

namespace {

// On the perspective path a tile is drawn in vertical strips of at most this width in samples, which bounds the cost of
// drawing a narrow part of a tile. Narrower strips would slow down whole frames by more than they save; at Best, tiles
// are small already.
int maxStripSamples(Quality quality) {
  return quality == Quality::Best ? 128 : 64;
}

// The strips' width in pixels, which divides the tile's width.
int stripWidthFor(int samples, Quality quality) {
  return maxStripSamples(quality) / static_cast<int>(std::bit_ceil(static_cast<unsigned>(samples)));
}

// How positions are measured. A move by whole pixels needs neither the outline's half pixel nor more than one sample.
struct Convention {
  SampleSpace space;
  double half;  // subtracted from the corners, in samples
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

ImageView partOf(const ImageView& view, int x, int y, Size size) {
  return {view.pixel(x, y), view.row_bytes, size, view.depth};
}

Rect common(const Rect& a, const Rect& b) {
  return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

// Past the caches where the view is a part of a large picture.
void clear(const ImageView& view) {
  const StorePolicy policy = storePolicyFor(static_cast<std::uint64_t>(std::abs(view.row_bytes)) *
                                            static_cast<std::uint64_t>(view.size.height));
  for (int y = 0; y < view.size.height; ++y) {
    clearBytes(view.row(y), bytesPerPixel(view.depth) * static_cast<std::size_t>(view.size.width), policy);
  }
}

void copy(const ImageView& from, const ImageView& to) {
  if (from.data == to.data) {
    return;
  }
  for (int y = 0; y < to.size.height; ++y) {
    std::memcpy(to.row(y), from.row(y), bytesPerPixel(to.depth) * static_cast<std::size_t>(to.size.width));
  }
}

// A part of a tile that is drawn in one go.
struct Piece {
  TileGrid grid;  // of the whole tile or of a strip of it, whichever part is visible
  Rect visible;   // the requested part, in output pixels
  Rect samples;   // the part of the grid needed for it
  bool is_standard_enough = false;
};

// The part of a grid needed for the visible pixels, with aprons on the bilinear path.
Rect samplesFor(const TileGrid& grid, const Rect& visible, bool is_scanned) {
  const auto range = [&](int begin, int end, int from, int apron) {
    const int lower = (begin - from) * grid.samples + apron;
    const int upper = (end - from) * grid.samples + apron;
    return is_scanned ? std::pair(lower - apron, upper + apron) : std::pair(lower, upper);
  };
  const auto [left, right] = range(visible.left, visible.right, grid.area.left, grid.apron_x);
  const auto [top, bottom] = range(visible.top, visible.bottom, grid.area.top, grid.apron_y);
  return {left, top, right, bottom};
}

// Whether a part of a tile lies wholly outside of the picture.
bool showsNothing(const FramePlan& plan, const Rect& part) {
  return plan.path == RenderPath::Perspective &&
         plan.outline
             .cut(Box{static_cast<double>(part.left), static_cast<double>(part.top), static_cast<double>(part.right),
                      static_cast<double>(part.bottom)})
             .empty();
}

// Calls `draw(piece)` for the pieces that make up `visible`, up to the first error.
//
// The bits of a perspective row depend on where the row begins, so the tile is cut into strips of a fixed width; its
// rows are independent. The bilinear scan may begin anywhere.
template <typename Draw>
Result<void> forEachPiece(const FramePlan& plan, Quality quality, const Rect& tile, int samples, const Rect& visible,
                          const Draw& draw) {
  const bool is_standard_enough = isStandardEnough(plan, tile, samples);
  if (plan.path == RenderPath::Bilinear) {
    const TileGrid grid = gridOf(plan, tile, samples);
    return draw(Piece{grid, visible, samplesFor(grid, visible, true), is_standard_enough});
  }
  const int width = stripWidthFor(samples, quality);
  for (int left = tile.left; left < tile.right; left += width) {
    const Rect strip{left, tile.top, std::min(left + width, tile.right), tile.bottom};
    const Rect part = common(strip, visible);
    if (part.empty()) {
      continue;
    }
    const TileGrid grid = gridOf(plan, strip, samples);
    if (Result<void> done = draw(Piece{grid, part, samplesFor(grid, part, false), is_standard_enough}); !done) {
      return done;
    }
  }
  return {};
}

const FrameOptions& optionsFor(const TileSetting& setting, const Piece& piece) {
  return piece.is_standard_enough ? setting.standard_options : setting.options;
}

// The width of the canvas that a perspective row's first `needed` samples are drawn on. At High the effect counts in
// its canvas's width, which it divides by in the end: halves of it give the same bits. At Standard it rounds in
// between.
int canvasWidth(int width, int needed, Quality quality) {
  while (quality != Quality::Standard && width % 2 == 0 && width / 2 >= needed) {
    width /= 2;
  }
  return width;
}

// The canvas that the module draws for a piece: whole rows of the grid on the perspective path, only the needed samples
// on the bilinear one.
struct PieceCanvas {
  Point origin;   // of the canvas, in output pixels
  Rect on_grid;   // in the grid's samples
  RowRange rows;  // of the canvas
};

PieceCanvas canvasOf(const FramePlan& plan, const Piece& piece, Quality quality) {
  const Size size = piece.grid.size();
  const Point origin = piece.grid.origin();
  if (plan.path == RenderPath::Perspective) {
    const int width = canvasWidth(size.width, piece.samples.right, quality);
    return {origin, {0, 0, width, size.height}, {piece.samples.top, piece.samples.bottom}};
  }
  const double n = piece.grid.samples;
  return {{origin.x + piece.samples.left / n, origin.y + piece.samples.top / n},
          piece.samples,
          {0, piece.samples.height()}};
}

// Lets the module draw a piece's canvas into `drawn`, which has the canvas's size.
Result<void> drawSamples(const TileSetting& setting, const TileLayer& layer, const Convention& convention,
                         const Piece& piece, const PieceCanvas& canvas, FrameState& frame, const ImageView& drawn) {
  frame.rows.begin(setting.module.workers, 1, setting.options.progress, setting.options.stop);
  frame.depth = drawn.depth;
  frame.placed = layer.is_on_plane ? onGrid(layer.corners, {}, 1, convention.half)
                                   : onGrid(layer.corners, canvas.origin, piece.grid.samples, convention.half);
  frame.space = convention.space;
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
  const FrameJob job{setting.module, frame, layer.pixels.size, optionsFor(setting, piece)};
  const int left = layer.is_on_plane ? static_cast<int>(canvas.origin.x) : 0;
  const int top = layer.is_on_plane ? static_cast<int>(canvas.origin.y) : 0;
  const Result<Rect> rows = drawRows(job, {left, top, left + drawn.size.width, top + drawn.size.height}, canvas.rows);
  if (frame.guard && rows) {
    const int top_row = canvas.rows.begin;
    const Size size{drawn.size.width, canvas.rows.end - top_row};
    copy(partOf(frame.guard->world(), 0, top_row, size), partOf(drawn, 0, top_row, size));
  }
  frame.guard.reset();
  frame.worlds.clear();
  return rows ? Result<void>() : tl::unexpected(rows.error());
}

// Averages the samples to the visible pixels. `drawn` is the whole grid.
void finishPiece(const FramePlan& plan, const Piece& piece, double half, const ImageView& drawn,
                 const ImageView& target) {
  const TileGrid& grid = piece.grid;
  const Point origin = grid.origin();
  if (plan.path == RenderPath::Perspective && plan.edges == Edges::Soft && grid.samples == 1) {
    // With soft edges the region extends beyond what the effect draws, so there is no coverage to apply.
    const Rect& part = piece.samples;
    copy(partOf(drawn, part.left, part.top, {part.width(), part.height()}), target);
    return;
  }
  if (plan.path == RenderPath::Bilinear) {
    const double shift = half / grid.samples;
    extendScan(plan.region.onGrid({origin.x + shift, origin.y + shift}, grid.samples),
               plan.region.onGrid(origin, grid.samples), piece.samples, drawn);
  }
  const ImageView samples =
      partOf(drawn, grid.apron_x, grid.apron_y, {drawn.size.width - grid.apron_x, drawn.size.height - grid.apron_y});
  const CoverageRegion region =
      plan.region.onGrid({static_cast<double>(grid.area.left), static_cast<double>(grid.area.top)}, grid.samples);
  resolve(asConst(samples), grid.samples, region, piece.visible.left - grid.area.left,
          piece.visible.top - grid.area.top, target);
}

bool contains(const Rect& outer, const Rect& inner) {
  return outer.left <= inner.left && outer.top <= inner.top && inner.right <= outer.right &&
         inner.bottom <= outer.bottom;
}

// Where a piece's whole grid can be drawn without a copy of the visible part afterwards: the frame's output, if that
// has room for the rows that are not visible, which the module leaves alone.
std::optional<ImageView> gridInOutput(const TileSetting& setting, const Piece& piece, const ImageView& target) {
  const Rect& area = piece.grid.area;
  const Rect& visible = piece.visible;
  const Rect& canvas = setting.canvas;
  const bool is_direct = target.data == setting.output.pixel(visible.left - canvas.left, visible.top - canvas.top);
  const bool is_pixels = piece.grid.size() == Size{area.width(), area.height()};
  if (!is_direct || !is_pixels || area.left != visible.left || area.right != visible.right || !contains(canvas, area)) {
    return std::nullopt;
  }
  return partOf(setting.output, area.left - canvas.left, area.top - canvas.top, piece.grid.size());
}

// Draws the visible part of a piece into `target`.
Result<void> drawPiece(const TileSetting& setting, const FramePlan& plan, const TileLayer& layer, const Piece& piece,
                       TileWorker& worker, const ImageView& target) {
  const Convention convention = conventionOf(plan);
  const bool is_in_place = piece.grid.samples == 1 && piece.grid.size() == target.size;
  ImageView drawn = target;
  if (const std::optional<ImageView> grid = gridInOutput(setting, piece, target)) {
    drawn = *grid;
  } else if (!is_in_place) {
    constexpr int kSide = kTileSide + 2 * kScanApron;
    if (Result<void> fitted = worker.samples.fit({kSide, kSide}, target.depth); !fitted) {
      return fitted;
    }
    drawn = partOf(worker.samples.view(), 0, 0, piece.grid.size());
  }
  const PieceCanvas canvas = canvasOf(plan, piece, optionsFor(setting, piece).quality);
  const ImageView part =
      partOf(drawn, canvas.on_grid.left, canvas.on_grid.top, {canvas.on_grid.width(), canvas.on_grid.height()});
  return drawSamples(setting, layer, convention, piece, canvas, worker.frame, part).map([&] {
    finishPiece(plan, piece, convention.half, drawn, target);
  });
}

Result<void> drawMoment(const TileSetting& setting, const FramePlan& plan, const Tile& tile, const Rect& visible,
                        TileWorker& worker, const ImageView& target);

// Draws a tile whose corners do not fit into 16.16: in quarters, each of which shows less of the layer, then with fewer
// samples. Even smaller tiles for which that is not enough show next to nothing of the layer, and stay transparent.
Result<void> drawFarTile(const TileSetting& setting, const FramePlan& plan, const Tile& tile, const Rect& visible,
                         TileWorker& worker, const ImageView& target) {
  constexpr int kSmallestSide = 16;
  if (plan.path == RenderPath::Bilinear && tile.samples == 1) {
    return cornerOutOfReach();
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

// Draws the part `visible` of a tile, at one moment, into `target`.
Result<void> drawMoment(const TileSetting& setting, const FramePlan& plan, const Tile& tile, const Rect& visible,
                        TileWorker& worker, const ImageView& target) {
  const ImageView& source = plan.path == RenderPath::Bilinear ? setting.scanned_layer : setting.layer;
  if (source.depth != target.depth) {
    return worker.fine.fit({kTileSide, kTileSide}, source.depth).and_then([&] {
      const ImageView fine = partOf(worker.fine.view(), 0, 0, target.size);
      return drawMoment(setting, plan, tile, visible, worker, fine).map([&] { narrow(asConst(fine), target); });
    });
  }
  const int samples = plan.is_whole_move ? 1 : tile.samples;
  const std::optional<TileLayer> layer = layerFor(plan, {tile.area, samples}, conventionOf(plan).half, source);
  if (!layer) {
    return drawFarTile(setting, plan, tile, visible, worker, target);
  }
  return forEachPiece(plan, setting.options.quality, tile.area, samples, visible, [&](const Piece& piece) {
    const Rect& part = piece.visible;
    const ImageView view =
        partOf(target, part.left - visible.left, part.top - visible.top, {part.width(), part.height()});
    if (showsNothing(plan, part)) {
      clear(view);
      return Result<void>();
    }
    return drawPiece(setting, plan, *layer, piece, worker, view);
  });
}

// The mean of all moments.
Result<void> drawBlurred(const TileSetting& setting, const Tile& tile, const Rect& visible, TileWorker& worker,
                         const ImageView& target) {
  auto fitted = worker.moment.fit({kTileSide, kTileSide}, target.depth).and_then([&] {
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
  const Rect visible = common(tile.area, setting.reached);
  if (visible.empty()) {
    return {};
  }
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
