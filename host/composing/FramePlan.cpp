#include "host/composing/FramePlan.h"

#include <algorithm>
#include <cmath>

#include "host/composing/PathChoice.h"
#include "host/composing/SampleCount.h"

namespace vantorel::host {

namespace {

// How far a soft edge is drawn beyond the outline.
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

}  // namespace

FramePlan::FramePlan(const Corners& frame_corners, double layer_width, double layer_height, Size layer_pixels,
                     const FrameOptions& options)
    : corners(frame_corners), path(pathOf(frame_corners)), layer(layer_pixels), edges(edgesOf(options)) {
  samples = options.samples == 0 && options.quality != Quality::Best ? 1 : options.samples;
  if (path == RenderPath::Perspective) {
    planPerspective(layer_width, layer_height);
  } else {
    region = CoverageRegion::betweenChains(corners);
  }
}

void FramePlan::planPerspective(double layer_width, double layer_height) {
  map = Homography::ofRectangle(layer_width, layer_height, corners);
  inverse = map ? map->inverse() : std::nullopt;
  outline = ConvexPolygon(corners);
  if (!inverse) {
    outline = {};
  }
  if (edges == Edges::Crisp) {
    region = CoverageRegion(outline);
  } else if (!outline.empty()) {
    const Box box = outline.bounds();
    outline = ConvexPolygon(
        Box{box.left - kSoftMargin, box.top - kSoftMargin, box.right + kSoftMargin, box.bottom + kSoftMargin});
    region = CoverageRegion(outline);
  }
}

bool FramePlan::isWholeMove() const {
  const Point& origin = corners.upper_left;
  const Corners moved{origin,
                      {origin.x + layer.width, origin.y},
                      {origin.x, origin.y + layer.height},
                      {origin.x + layer.width, origin.y + layer.height}};
  return corners == moved && isWhole(origin.x) && isWhole(origin.y);
}

Edges edgesOf(const FrameOptions& options) {
  const bool is_best = options.quality == Quality::Best && options.placement == Placement::Outline;
  return options.edges.value_or(is_best ? Edges::Crisp : Edges::Soft);
}

bool needsTiles(const FrameOptions& options, const FramePlan& plan) {
  return options.placement == Placement::Outline &&
         (plan.path == RenderPath::Bilinear || plan.edges == Edges::Crisp || plan.samples != 1);
}

int PlannedSamples::samplesFor(const Rect& part) const {
  if (plan_.path == RenderPath::Bilinear) {
    const bool is_empty = plan_.region.empty() || !meets(plan_.region.bounds(), boxOf(part));
    return is_empty ? 0 : plan_.samples != 0 ? plan_.samples : neededByScan();
  }
  const ConvexPolygon drawn = plan_.outline.cut(boxOf(part));
  if (drawn.empty() || drawn.area() == 0.0) {
    return 0;
  }
  return plan_.samples != 0 ? plan_.samples : neededIn(drawn);
}

int PlannedSamples::neededIn(const ConvexPolygon& part) const {
  if (plan_.isWholeMove()) {
    return 1;
  }
  const auto neededAt = [&](const Point& p) { return samplesForFilter(plan_.inverse->derivative(p)); };
  int needed = neededAt(part.middle());
  const std::span<const Point> points = part.points();
  for (std::size_t i = 0; i < points.size(); ++i) {
    const Point& a = points[i];
    const Point& b = points[(i + 1) % points.size()];
    needed = std::max({needed, neededAt(a), neededAt({(a.x + b.x) / 2.0, (a.y + b.y) / 2.0})});
  }
  return needed;
}

int PlannedSamples::neededByScan() const {
  const Box box = plan_.region.bounds();
  return samplesForSteps(
      std::max(plan_.layer.width / (box.right - box.left), plan_.layer.height / (box.bottom - box.top)));
}

}  // namespace vantorel::host
