#include "host/composing/LayerPart.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/composing/ScanEdges.h"
#include "host/geometry/ScanChains.h"

namespace vantorel::host {

namespace {

// The largest sampling box, in layer pixels.
constexpr double kLargestBox = 16.0;

Box grown(const Rect& rect, double by) {
  return {rect.left - by, rect.top - by, rect.right + by, rect.bottom + by};
}

// How far the sampling boxes of a part of the picture can extend beyond the part of the layer that it shows, in layer
// pixels.
double marginFor(const FramePlan& plan, const ConvexPolygon& shown) {
  double extent = 1.0;
  for (const Point& point : shown.points()) {
    const Jacobian j = plan.inverse->derivative(point);
    extent = std::max({extent, std::abs(j.xx) + std::abs(j.xy), std::abs(j.yx) + std::abs(j.yy)});
  }
  return 1.0 + std::min(extent, kLargestBox);
}

}  // namespace

Rect readFor(const FramePlan& plan, const ConvexPolygon& shown) {
  const Box needed = shown.mappedBy(*plan.inverse).bounds();
  const double margin = marginFor(plan, shown);
  const auto low = [&](double value, int size) {
    return static_cast<int>(std::clamp(std::floor(value - margin), 0.0, size - 1.0));
  };
  const auto high = [&](double value, int size) {
    return static_cast<int>(std::clamp(std::ceil(value + margin), 1.0, static_cast<double>(size)));
  };
  return {low(needed.left, plan.layer.width), low(needed.top, plan.layer.height), high(needed.right, plan.layer.width),
          high(needed.bottom, plan.layer.height)};
}

Rect scannedPart(const FramePlan& plan, const Rect& canvas) {
  constexpr double kReach = kScanApron + 2.0;  // output pixels: the apron, and half a sample
  constexpr double kMargin = 3.0;              // layer pixels: interpolation and the scan's rounding
  const bool is_held = spreadOf(plan.corners) < kMaxScanSpread;
  const Box shown = is_held ? ScanChains(plan.corners).shownIn(grown(canvas, kReach)) : Box{0.0, 0.0, 1.0, 1.0};
  const auto pixels = [](double low, double high, int size) {
    const double begin = std::clamp(std::floor(low * size - kMargin), 0.0, static_cast<double>(size));
    const double end = std::clamp(std::ceil(high * size + kMargin), begin, static_cast<double>(size));
    return std::pair(static_cast<int>(begin), static_cast<int>(end));
  };
  const auto [left, right] = pixels(shown.left, shown.right, plan.layer.width);
  const auto [top, bottom] = pixels(shown.top, shown.bottom, plan.layer.height);
  return {left, top, right, bottom};
}

Rect neededPart(const FramePlan& plan, const Rect& canvas) {
  const Rect whole{0, 0, plan.layer.width, plan.layer.height};
  if (plan.path == RenderPath::Bilinear) {
    constexpr int kInterpolation = 2;  // for interpolating the enlarged layer
    const Rect part = scannedPart(plan, canvas);
    return {std::max(part.left - kInterpolation, 0), std::max(part.top - kInterpolation, 0),
            std::min(part.right + kInterpolation, whole.right), std::min(part.bottom + kInterpolation, whole.bottom)};
  }
  if (!plan.inverse) {
    return whole;
  }
  // A pixel whose position is further from the layer than the largest box extends reads nothing of it.
  const std::optional<Corners> reached = imageOf(grown(whole, kLargestBox + 2.0), *plan.map);
  if (!reached) {
    return whole;
  }
  const ConvexPolygon shown = ConvexPolygon(*reached).cut(grown(canvas, 1.0));
  return shown.empty() ? Rect{} : readFor(plan, shown);
}

Rect united(const Rect& a, const Rect& b) {
  if (a.empty() || b.empty()) {
    return a.empty() ? b : a;
  }
  return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right), std::max(a.bottom, b.bottom)};
}

}  // namespace vantorel::host
