#include "cli/pictures/Feather.h"

#include <algorithm>
#include <cmath>

#include "cli/pictures/PixelVisit.h"

namespace vantorel::cli {

namespace {

double squaredDistance(const host::Point& p, const host::Point& a, const host::Point& b) {
  const double dx = b.x - a.x;
  const double dy = b.y - a.y;
  const double squared = dx * dx + dy * dy;
  const double along = squared > 0.0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / squared, 0.0, 1.0) : 0.0;
  const double ex = p.x - a.x - along * dx;
  const double ey = p.y - a.y - along * dy;
  return ex * ex + ey * ey;
}

// Whether a ray from the point to the right crosses the edge.
bool isCrossed(const host::Point& p, const host::Point& a, const host::Point& b) {
  return (a.y > p.y) != (b.y > p.y) && p.x < a.x + (p.y - a.y) / (b.y - a.y) * (b.x - a.x);
}

// To the nearest edge; 0 outside.
double depthInside(const host::Point& p, const Outline& outline) {
  bool is_inside = false;
  double nearest = HUGE_VAL;
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const host::Point& a = outline[i];
    const host::Point& b = outline[(i + 1) % outline.size()];
    is_inside = is_inside != isCrossed(p, a, b);
    nearest = std::min(nearest, squaredDistance(p, a, b));
  }
  return is_inside ? std::sqrt(nearest) : 0.0;
}

double smoothStep(double t) {
  const double held = std::min(t, 1.0);
  return held * held * (3.0 - 2.0 * held);
}

}  // namespace

void feather(const host::ImageView& picture, const Outline& outline, double width) {
  withChannelOf(picture.depth, [&](auto type) {
    using Channel = decltype(type);
    forPixels<Channel>(picture, [&](Channel* pixel, int x, int y) {
      multiplyPixel(pixel, smoothStep(depthInside({x + 0.5, y + 0.5}, outline) / width));
    });
  });
}

}  // namespace vantorel::cli
