#include "tracks/Gaps.h"

#include <fmt/format.h>

#include <cmath>

#include "tracks/FrameList.h"
#include "tracks/Text.h"
#include "tracks/WholeFrames.h"

namespace vantorel::tracks {

namespace {

constexpr std::size_t kMaxListed = 100000;

class GapFiller {
 public:
  GapFiller(CornerTrack& track, int longest) : track_(track), longest_(longest), filled_(track.keys.size(), false) {}

  void fillCorner(std::size_t corner) {
    std::vector<CornerKey>& keys = track_.keys;
    const host::AnimatedPoint known = animated(track_, corner);
    std::size_t after = 0;
    while (after < keys.size()) {
      if (keys[after].has(corner)) {
        ++after;
        continue;
      }
      const std::size_t first = after;
      while (after < keys.size() && !keys[after].has(corner)) {
        ++after;
      }
      requireShort(corner, first, after);
      for (std::size_t k = first; k < after; ++k) {
        keys[k].points[corner] = known.at(keys[k].frame);
        filled_[k] = true;
        keys[k].present = static_cast<std::uint8_t>(keys[k].present | 1u << corner);
      }
    }
  }

  std::vector<double> filledFrames() const {
    std::vector<double> frames;
    for (std::size_t k = 0; k < filled_.size(); ++k) {
      if (filled_[k]) {
        frames.push_back(track_.keys[k].frame);
      }
    }
    return frames;
  }

 private:
  // The corner is missing on the keys from `first` up to, but not including, `after`.
  void requireShort(std::size_t corner, std::size_t first, std::size_t after) const {
    const std::vector<CornerKey>& keys = track_.keys;
    const double from = first > 0 ? keys[first - 1].frame + 1.0 : keys[first].frame;
    const double to = after < keys.size() ? keys[after].frame - 1.0 : keys[after - 1].frame;
    if (to - from + 1.0 > longest_) {
      fail(track_.source, keys[first].line, kCornerNames[corner],
           fmt::format("is missing on frames {} to {} ({}), more than {}; track it there, or allow longer gaps",
                       printed(from, 3), printed(to, 3), printed(to - from + 1.0, 3), longest_));
    }
  }

  CornerTrack& track_;
  int longest_;
  std::vector<bool> filled_;
};

// Checks the frames without any key, and returns the first of them.
std::vector<double> framesWithoutKey(const CornerTrack& track, int longest) {
  std::vector<double> frames;
  for (std::size_t k = 1; k < track.keys.size(); ++k) {
    const double before = track.keys[k - 1].frame;
    const double after = track.keys[k].frame;
    const double missing = std::ceil(after) - std::floor(before) - 1.0;
    if (missing > longest) {
      fail(track.source, track.keys[k].line, "frame",
           fmt::format("the {} frames from {} to {} have no key, more than {}; track them, or allow longer gaps",
                       printed(missing, 0), printed(std::floor(before) + 1.0, 0), printed(std::ceil(after) - 1.0, 0),
                       longest));
    }
    for (double frame = std::floor(before) + 1.0; frame < after && frames.size() < kMaxListed; frame += 1.0) {
      frames.push_back(frame);
    }
  }
  return frames;
}

}  // namespace

std::vector<std::string> fillGaps(CornerTrack& track, std::optional<int> longest, bool sparse) {
  const int limit = longest.value_or(kUsualLongestGap);
  std::vector<std::string> notes;
  GapFiller filler(track, limit);
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    filler.fillCorner(c);
  }
  if (const std::vector<double> frames = filler.filledFrames(); !frames.empty()) {
    notes.push_back(fmt::format("{}: missing corners were interpolated", frameList(frames)));
  }
  if (!sparse || longest) {
    if (const std::vector<double> frames = framesWithoutKey(track, limit); !frames.empty()) {
      notes.push_back(fmt::format("{}: no key, interpolated", frameList(frames)));
    }
  }
  return notes;
}

}  // namespace vantorel::tracks
