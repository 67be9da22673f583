#include "host/composing/TileLayer.h"

#include <algorithm>
#include <cmath>

#include "host/composing/LayerPart.h"
#include "host/composing/PathChoice.h"
#include "host/composing/ScanEdges.h"
#include "host/geometry/ScanChains.h"

namespace vantorel::host {

namespace {

bool areCoordinates(const Corners& corners) {
  bool fit = true;
  for (std::size_t i = 0; i < kCornerCount; ++i) {
    fit = fit && isCoordinate(corners[i].x) && isCoordinate(corners[i].y);
  }
  return fit;
}

// Whether the corners fit into 16.16 relative to any point of the tile at which a grid may begin.
bool areCoordinatesIn(const Tile& tile, double half, const Corners& corners) {
  const double apron = static_cast<double>(kScanApron) / tile.samples;
  const auto fit_from = [&](double x, double y) { return areCoordinates(onGrid(corners, {x, y}, tile.samples, half)); };
  return fit_from(tile.area.left - apron, tile.area.top - apron) && fit_from(tile.area.right, tile.area.bottom);
}

bool keepsPath(const FramePlan& plan, const Tile& tile, double half, const Corners& corners) {
  const Point origin{static_cast<double>(tile.area.left), static_cast<double>(tile.area.top)};
  return pathOf(onGrid(corners, origin, tile.samples, half)) == plan.path;
}

// Whether the map's horizon passes through a point, where a module cannot normalise its map (DegenerateMapRetry.h).
bool isOnHorizon(const FramePlan& plan, const Point& p) {
  constexpr double kRounding = 1e-9;
  return std::abs(plan.inverse->weight(p)) < kRounding * std::abs(plan.inverse->weight(plan.outline.middle()));
}

Box boxOf(const Rect& rect) {
  return {static_cast<double>(rect.left), static_cast<double>(rect.top), static_cast<double>(rect.right),
          static_cast<double>(rect.bottom)};
}

// The scan also subtracts coordinates in 16.16, which must not overflow. With one sample per pixel there is no
// alternative to fall back to.
bool isSpreadHeld(const FramePlan& plan, int samples) {
  return plan.path == RenderPath::Perspective || samples == 1 || spreadOf(plan.corners) * samples < kMaxScanSpread;
}

std::optional<TileLayer> wholeLayer(const FramePlan& plan, const Tile& tile, double half, const ImageView& layer) {
  if (!plan.whole || !areCoordinatesIn(tile, half, *plan.whole) || !isSpreadHeld(plan, tile.samples)) {
    return std::nullopt;
  }
  const bool is_drawable = !plan.has_source || keepsPath(plan, tile, half, *plan.whole);
  return is_drawable ? std::optional(TileLayer{layer, *plan.whole}) : std::nullopt;
}

// The part of the layer that the tile shows, with a margin for the sampling boxes.
std::optional<TileLayer> shownLayer(const FramePlan& plan, const Tile& tile, double half, const ImageView& layer) {
  const Rect& area = tile.area;
  const ConvexPolygon shown =
      plan.outline.cut(Box{area.left - 1.0, area.top - 1.0, area.right + 1.0, area.bottom + 1.0});
  if (shown.empty()) {
    return std::nullopt;
  }
  const Rect part = readFor(plan, shown);
  const std::optional<Corners> image = imageOf(boxOf(part), *plan.map);
  if (!image || part.empty() || !areCoordinatesIn(tile, half, *image) || !keepsPath(plan, tile, half, *image)) {
    return std::nullopt;
  }
  const ImageView pixels{layer.pixel(part.left, part.top), layer.row_bytes, {part.width(), part.height()}, layer.depth};
  return TileLayer{pixels, *image};
}

}  // namespace

TileGrid gridOf(const FramePlan& plan, const Rect& area, int samples) {
  const TileGrid plain{area, samples};
  if (plan.path == RenderPath::Bilinear) {
    return {area, samples, kScanApron, kScanApron};
  }
  // The two numbers differ so that a horizon at 45 degrees cannot pass through the new corner too.
  return plan.inverse && isOnHorizon(plan, plain.origin()) ? TileGrid{area, samples, 1, 2} : plain;
}

Corners onGrid(const Corners& corners, const Point& origin, int samples, double half) {
  const auto move = [&](const Point& p) {
    return Point{(p.x - origin.x) * samples - half, (p.y - origin.y) * samples - half};
  };
  return {move(corners.upper_left), move(corners.upper_right), move(corners.lower_left), move(corners.lower_right)};
}

std::optional<TileLayer> layerFor(const FramePlan& plan, const Tile& tile, double half, const ImageView& layer) {
  if (const std::optional<TileLayer> whole = wholeLayer(plan, tile, half, layer)) {
    return whole;
  }
  if (plan.path == RenderPath::Bilinear) {
    return std::nullopt;
  }
  const std::optional<TileLayer> part = plan.inverse ? shownLayer(plan, tile, half, layer) : std::nullopt;
  const bool holds_given_corners = tile.samples == 1 && !plan.has_source;
  return part || !holds_given_corners ? part : std::optional(TileLayer{layer, plan.corners, true});
}

}  // namespace vantorel::host
