#include "tracks/WholeFrames.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdint>
#include <utility>

#include "tracks/Text.h"

namespace vantorel::tracks {

namespace {

constexpr double kMaxFrames = 1e7;
// Frame numbers are written with six decimals: a key this close to a whole frame counts as being on it.
constexpr double kSameFrame = 1e-6;

}  // namespace

host::AnimatedPoint animated(const CornerTrack& track, std::size_t corner) {
  std::vector<host::AnimatedPoint::Key> keys;
  keys.reserve(track.keys.size());
  for (const CornerKey& key : track.keys) {
    if (key.has(corner)) {
      keys.push_back({key.frame, key.points[corner]});
    }
  }
  return {std::move(keys), track.interpolation};
}

CornerTrack withWholeFrames(const CornerTrack& track) {
  const double frames = track.keys.back().frame - track.keys.front().frame;
  if (frames > kMaxFrames) {
    fail(track.source, 0, "",
         fmt::format("spans {} frames, more than ten million; write a format with sparse keys", printed(frames, 0)));
  }
  const std::array corners{animated(track, kUpperLeft), animated(track, kUpperRight), animated(track, kLowerLeft),
                           animated(track, kLowerRight)};
  CornerTrack whole = track;
  whole.keys.clear();
  for (const CornerKey& key : track.keys) {
    if (!whole.keys.empty()) {
      const auto first = static_cast<std::int64_t>(std::floor(whole.keys.back().frame + kSameFrame)) + 1;
      const auto end = static_cast<std::int64_t>(std::ceil(key.frame - kSameFrame));
      for (std::int64_t whole_frame = first; whole_frame < end; ++whole_frame) {
        const auto frame = static_cast<double>(whole_frame);
        CornerKey& between = whole.keys.emplace_back(CornerKey{frame, {}, kAllCorners, 0, 0});
        for (std::size_t c = 0; c < kCornerCount; ++c) {
          between.points[c] = corners[c].at(frame);
        }
      }
    }
    whole.keys.push_back(key);
  }
  return whole;
}

}  // namespace vantorel::tracks
