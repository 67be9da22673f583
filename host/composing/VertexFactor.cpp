#include "host/composing/VertexFactor.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "host/geometry/ScanChains.h"

namespace vantorel::host {

namespace {

constexpr int kMaxEnlargedSide = 32767;           // limit of the effect's bilinear renderer
constexpr std::int64_t kMaxFinePixels = 1 << 20;  // of layers enlarged more than twice

// In layer pixels. Found by measuring a zone plate and bars on concave and nearly straight quadrilaterals of all sizes:
// if the shortest step between samples is at least this long, means at the vertices are 2 to 7 dB closer to the true
// picture, because they alias less; at steps of 0.4 and below they are too soft.
constexpr double kShortestStepOfMeans = 0.5;

double shortestStepOf(std::span<const FramePlan> moments) {
  double shortest = std::numeric_limits<double>::infinity();
  int samples = 1;
  for (const FramePlan& plan : moments) {
    if (plan.path == RenderPath::Bilinear) {
      shortest = std::min(shortest, ScanChains(plan.corners).shortestStep(plan.layer.width, plan.layer.height));
      samples = std::max(samples, mostSamplesOfScan(plan));
    }
  }
  return shortest / samples;
}

int finerFactorFor(const FramePlan& plan) {
  const Size size = plan.layer;
  const Box box = plan.region.bounds();
  const double enlarged = std::min((box.right - box.left) / size.width, (box.bottom - box.top) / size.height);
  const auto fits = [&](int factor) { return factor * std::max(size.width, size.height) <= kMaxEnlargedSide; };
  int factor = fits(2) ? 2 : 1;
  while (factor >= 2 && factor < 8 && 2 * factor <= enlarged && fits(2 * factor) &&
         std::int64_t{4} * factor * factor * size.width * size.height <= kMaxFinePixels) {
    factor *= 2;
  }
  return factor;
}

}  // namespace

int vertexFactorFor(std::span<const FramePlan> moments) {
  const auto scanned = std::find_if(moments.begin(), moments.end(),
                                    [](const FramePlan& plan) { return plan.path == RenderPath::Bilinear; });
  if (scanned == moments.end()) {
    return 0;
  }
  return shortestStepOf(moments) >= kShortestStepOfMeans ? 1 : finerFactorFor(*scanned);
}

}  // namespace vantorel::host
