#include "host/composing/FramePlan.h"

#include <algorithm>
#include <cmath>

#include "host/composing/PathChoice.h"
#include "host/composing/SampleCount.h"

namespace vantorel::host {

namespace {

// How far beyond the outline a soft edge is drawn, in pixels.
constexpr double kSoftMargin = 8.0;

Box boxOf(const Rect& rect) {
  return {static_cast<double>(rect.left), static_cast<double>(rect.top), static_cast<double>(rect.right),
          static_cast<double>(rect.bottom)};
}

bool meets(const Box& a, const Box& b) {
  return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

bool isWhole(double value) {
  return value == std::floor(value);
}

// Calls `look(derivative)` with the map's derivative where its extremes in a part lie, or near.
template <typename Look>
void lookAtDerivatives(const FramePlan& plan, const ConvexPolygon& part, const Look& look) {
  const auto look_at = [&](const Point& p) { look(plan.inverse->derivative(p)); };
  look_at(part.middle());
  const std::span<const Point> points = part.points();
  for (std::size_t i = 0; i < points.size(); ++i) {
    const Point& a = points[i];
    const Point& b = points[(i + 1) % points.size()];
    look_at(a);
    look_at({(a.x + b.x) / 2.0, (a.y + b.y) / 2.0});
  }
}

int neededIn(const FramePlan& plan, const ConvexPolygon& part) {
  if (plan.is_whole_move) {
    return 1;
  }
  int needed = 1;
  lookAtDerivatives(plan, part, [&](const Jacobian& j) { needed = std::max(needed, samplesForFilter(j)); });
  return needed;
}

// At its borders the scan takes colours from up to a sample away; with finer samples this distance is small.
constexpr int kSamplesAtBorders = 4;

int neededInsideScan(const FramePlan& plan) {
  const Box box = plan.region.bounds();
  return samplesForSteps(
      std::max(plan.layer.width / (box.right - box.left), plan.layer.height / (box.bottom - box.top)));
}

int neededByScan(const FramePlan& plan, const Rect& part) {
  const int needed = neededInsideScan(plan);
  return needed >= kSamplesAtBorders || plan.region.covers(part) ? needed : kSamplesAtBorders;
}

Corners cornersOf(const Box& box) {
  return {{box.left, box.top}, {box.right, box.top}, {box.left, box.bottom}, {box.right, box.bottom}};
}

Corners moved(const Corners& corners, const Point& by) {
  const auto move = [&](const Point& p) { return Point{p.x + by.x, p.y + by.y}; };
  return {move(corners.upper_left), move(corners.upper_right), move(corners.lower_left), move(corners.lower_right)};
}

// The offset between two quadrilaterals, if one is the other moved by whole pixels.
std::optional<Point> wholeMove(const Corners& from, const Corners& to) {
  const Point by{to.upper_left.x - from.upper_left.x, to.upper_left.y - from.upper_left.y};
  return isWhole(by.x) && isWhole(by.y) && moved(from, by) == to ? std::optional(by) : std::nullopt;
}

}  // namespace

FramePlan::FramePlan(const Corners& frame_corners, const std::optional<Corners>& source, double layer_width,
                     double layer_height, Size layer_pixels, const FrameOptions& options)
    : corners(frame_corners),
      path(source ? RenderPath::Perspective : pathOf(frame_corners)),
      layer(layer_pixels),
      edges(source ? Edges::Crisp : edgesOf(options)),
      has_source(source.has_value()) {
  samples = options.samples == 0 && options.quality != Quality::Best ? 1 : options.samples;
  if (path == RenderPath::Perspective) {
    planPerspective({0.0, 0.0, layer_width, layer_height}, source);
  } else {
    whole = corners;
    region = CoverageRegion::betweenChains(corners);
  }
}

void FramePlan::planPerspective(const Box& layer_outline, const std::optional<Corners>& source) {
  const Corners pixels = cornersOf({0.0, 0.0, static_cast<double>(layer.width), static_cast<double>(layer.height)});
  const std::optional<Point> move = wholeMove(source.value_or(pixels), corners);
  is_whole_move = move.has_value();
  map = source ? Homography::ofQuadrilateral(*source, corners)
               : Homography::ofRectangle(layer_outline.right, layer_outline.bottom, corners);
  inverse = map ? map->inverse() : std::nullopt;
  if (!source) {
    whole = corners;
  }
  if (!inverse) {
    return;
  }
  outline = ConvexPolygon(corners);
  if (source) {
    outline = ConvexPolygon(*source).cut(layer_outline).mappedBy(*map);
    whole = move ? moved(pixels, *move) : imageOf(layer_outline, *map);
  } else if (edges == Edges::Soft) {
    const Box box = outline.bounds();
    outline = ConvexPolygon(
        Box{box.left - kSoftMargin, box.top - kSoftMargin, box.right + kSoftMargin, box.bottom + kSoftMargin});
  }
  region = CoverageRegion(outline);
}

Edges edgesOf(const FrameOptions& options) {
  const bool is_best = options.quality == Quality::Best && options.placement == Placement::Outline;
  return options.edges.value_or(is_best ? Edges::Crisp : Edges::Soft);
}

bool needsTiles(const FrameOptions& options, const FramePlan& plan) {
  return options.placement == Placement::Outline &&
         (options.canvas_independent || plan.path == RenderPath::Bilinear || plan.has_source ||
          plan.edges == Edges::Crisp || plan.samples != 1);
}

int samplesFor(const FramePlan& plan, const Rect& part) {
  if (plan.path == RenderPath::Bilinear) {
    const bool is_empty = plan.region.empty() || !meets(plan.region.bounds(), boxOf(part));
    return is_empty ? 0 : plan.samples != 0 ? plan.samples : neededByScan(plan, part);
  }
  const ConvexPolygon drawn = plan.outline.cut(boxOf(part));
  if (drawn.empty() || drawn.area() == 0.0) {
    return 0;
  }
  return plan.samples != 0 ? plan.samples : neededIn(plan, drawn);
}

bool isStandardEnough(const FramePlan& plan, const Rect& part, int samples) {
  // High quality alone gives a layer that is moved by whole pixels to the bit. The bilinear path knows no qualities.
  const ConvexPolygon drawn = plan.outline.cut(boxOf(part));
  if (plan.is_whole_move || drawn.empty()) {
    return false;
  }
  bool is_enough = true;
  lookAtDerivatives(plan, drawn, [&](const Jacobian& j) { is_enough = is_enough && hasSmallestBox(j, samples); });
  return is_enough;
}

int mostSamplesOfScan(const FramePlan& plan) {
  return plan.samples != 0 ? plan.samples : std::max(neededInsideScan(plan), kSamplesAtBorders);
}

int PlannedSamples::samplesFor(const Rect& part) const {
  int most = 0;
  for (const FramePlan& plan : moments_) {
    most = std::max(most, host::samplesFor(plan, part));
  }
  return most;
}

}  // namespace vantorel::host
