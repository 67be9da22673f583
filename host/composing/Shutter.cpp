#include "host/composing/Shutter.h"

#include <algorithm>
#include <cmath>

namespace vantorel::host {

namespace {

constexpr double kFullTurn = 360.0;

struct OpenTime {
  double begin;
  double length;
};

OpenTime openTimeOf(const FrameOptions& options) {
  const double scale = options.time.scale;
  const double frame_seconds = options.time.step / scale;
  const double length = options.shutter.degrees / kFullTurn * frame_seconds;
  const double offset = options.shutter.offset ? *options.shutter.offset / kFullTurn * frame_seconds : -length / 2.0;
  return {options.time.time / scale + offset, length};
}

// The longest path of a corner, in full-resolution pixels, approximated by straight pieces.
double longestWay(const AnimatedCorners& corners, const OpenTime& open) {
  constexpr int kPieces = 64;
  double longest = 0.0;
  for (std::size_t i = 0; i < kCornerCount; ++i) {
    double way = 0.0;
    Point before = corners[i].at(open.begin);
    for (int piece = 1; piece <= kPieces; ++piece) {
      const Point here = corners[i].at(open.begin + open.length * piece / kPieces);
      way += std::hypot(here.x - before.x, here.y - before.y);
      before = here;
    }
    longest = std::max(longest, way);
  }
  return longest;
}

}  // namespace

void momentsOf(const AnimatedCorners& corners, const AnimatedCorners* source, const FrameOptions& options,
               std::vector<double>* seconds) {
  seconds->assign(1, static_cast<double>(options.time.time) / options.time.scale);
  const OpenTime open = openTimeOf(options);
  if (!(open.length > 0.0)) {
    return;
  }
  const double source_way = source != nullptr ? longestWay(*source, open) : 0.0;
  const double way = std::max(longestWay(corners, open), source_way) / options.downsample;
  if (way == 0.0) {
    seconds->front() = open.begin;  // not the frame's time: with an offset the corners may be elsewhere then
    return;
  }
  const int most = options.shutter.max_samples;
  const int count = static_cast<int>(
      std::clamp(std::ceil(way / kWayOfMoment), std::min<double>(kFewestMoments, most), static_cast<double>(most)));
  seconds->clear();
  for (int i = 0; i < count; ++i) {
    seconds->push_back(open.begin + open.length * (i + 0.5) / count);
  }
}

int samplesOfMoment(int still_samples, std::size_t moments) {
  int samples = still_samples;
  const auto cost = [](int n, std::size_t times) { return static_cast<std::size_t>(n * n) * times; };
  while (samples > 1 && cost(samples, moments) > cost(still_samples, kFewestMoments)) {
    samples /= 2;
  }
  return samples;
}

}  // namespace vantorel::host
