#include "tracks/WholeFrames.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdint>

#include "tracks/Text.h"

namespace vantorel::tracks {

namespace {

constexpr double kMaxFrames = 1e7;
// Frame numbers are written with six digits after the point: a key that close to a whole frame stands on it.
constexpr double kSameFrame = 1e-6;

}  // namespace

Quadrilateral between(const CornerKey& before, const CornerKey& after, double frame,
                      host::Interpolation interpolation) {
  if (interpolation == host::Interpolation::Hold || frame == before.frame) {
    return frame == after.frame ? after.points : before.points;
  }
  const double share = (frame - before.frame) / (after.frame - before.frame);
  Quadrilateral points;
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    const Point& a = before.points[c];
    const Point& b = after.points[c];
    points[c] = {a.x + (b.x - a.x) * share, a.y + (b.y - a.y) * share};
  }
  return points;
}

CornerTrack withWholeFrames(const CornerTrack& track) {
  const double frames = track.keys.back().frame - track.keys.front().frame;
  if (frames > kMaxFrames) {
    fail(track.source, 0, "",
         fmt::format("spans {} frames, more than ten million; write a format with sparse keys", printed(frames, 0)));
  }
  CornerTrack whole = track;
  whole.keys.clear();
  for (const CornerKey& key : track.keys) {
    if (!whole.keys.empty()) {
      const CornerKey before = whole.keys.back();
      const auto first = static_cast<std::int64_t>(std::floor(before.frame + kSameFrame)) + 1;
      const auto end = static_cast<std::int64_t>(std::ceil(key.frame - kSameFrame));
      for (std::int64_t whole_frame = first; whole_frame < end; ++whole_frame) {
        const auto frame = static_cast<double>(whole_frame);
        whole.keys.push_back({frame, between(before, key, frame, track.interpolation), kAllCorners, 0, 0});
      }
    }
    whole.keys.push_back(key);
  }
  return whole;
}

}  // namespace vantorel::tracks
