#include "tracks/Summary.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>

#include "tracks/FrameList.h"
#include "tracks/Quadrilaterals.h"
#include "tracks/Text.h"
#include "tracks/WholeFrames.h"

namespace vantorel::tracks {

namespace {

constexpr double kMaxListedFrames = 1e6;

void takeExtremes(const std::vector<CornerKey>& keys, Point& least, Point& most) {
  least = most = keys.front().points[0];
  for (const CornerKey& key : keys) {
    for (const Point& point : key.points) {
      least = {std::min(least.x, point.x), std::min(least.y, point.y)};
      most = {std::max(most.x, point.x), std::max(most.y, point.y)};
    }
  }
}

void addExtremes(std::string& text, const char* name, const Point& least, const Point& most, const char* what) {
  fmt::format_to(std::back_inserter(text), "{:<12}{},{} to {},{} pixels{}\n", name, printed(least.x, 2),
                 printed(least.y, 2), printed(most.x, 2), printed(most.y, 2), what);
}

void takeSpeed(const CornerKey& before, const CornerKey& after, TrackSummary& summary) {
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    const double speed = distance(before.points[c], after.points[c]) / (after.frame - before.frame);
    if (speed > summary.fastest) {
      summary.fastest = speed;
      summary.fastest_frame = after.frame;
      summary.fastest_corner = c;
    }
  }
}

void takeShape(const CornerKey& key, TrackSummary& summary) {
  if (isDegenerate(key.points)) {
    summary.degenerate.push_back(key.frame);
  }
  if (isCrossing(key.points)) {
    summary.crossing.push_back(key.frame);
  }
  if (isDrawnBilinearly(key.points)) {
    summary.bilinear.push_back(key.frame);
  }
}

void addFrames(std::string& text, const char* name, const std::vector<double>& frames) {
  fmt::format_to(std::back_inserter(text), "{:<12}{}\n", name, frames.empty() ? "none" : frameList(frames));
}

const char* wayBetweenKeys(const TrackSummary& summary) {
  switch (summary.keys > 1 ? summary.interpolation : host::Interpolation::Linear) {
    case host::Interpolation::Hold:
      return ", held from key to key";
    case host::Interpolation::Smooth:
      return ", smooth from key to key";
    case host::Interpolation::Linear:
      break;
  }
  return "";
}

}  // namespace

TrackSummary summarize(const CornerTrack& track) {
  TrackSummary summary;
  const std::vector<CornerKey>& keys = track.keys;
  summary.keys = keys.size();
  summary.interpolation = track.interpolation;
  summary.first_frame = keys.front().frame;
  summary.last_frame = keys.back().frame;
  takeExtremes(keys, summary.least, summary.most);
  if (!track.source_keys.empty()) {
    summary.source_keys = track.source_keys.size();
    takeExtremes(track.source_keys, summary.source_least, summary.source_most);
  }
  for (std::size_t k = 1; k < keys.size(); ++k) {
    takeSpeed(keys[k - 1], keys[k], summary);
  }
  const bool listed = summary.last_frame - summary.first_frame <= kMaxListedFrames;
  const CornerTrack whole = listed ? withWholeFrames(track) : track;
  std::size_t own = 0;
  for (const CornerKey& key : whole.keys) {
    takeShape(key, summary);
    if (own < keys.size() && keys[own].frame == key.frame) {
      ++own;
    } else {
      summary.frames_without_key.push_back(key.frame);
    }
  }
  return summary;
}

std::string summaryText(const TrackSummary& summary) {
  std::string text;
  fmt::format_to(std::back_inserter(text), "{:<12}{} to {}, {}{}\n", "frames", printed(summary.first_frame, 3),
                 printed(summary.last_frame, 3), counted(summary.keys, "key"), wayBetweenKeys(summary));
  addFrames(text, "without key", summary.frames_without_key);
  addExtremes(text, "positions", summary.least, summary.most, "");
  if (summary.source_keys > 0) {
    const std::string keys = fmt::format(" of the layer, {}", counted(summary.source_keys, "key"));
    addExtremes(text, "from", summary.source_least, summary.source_most, keys.c_str());
  }
  if (summary.keys > 1 && summary.fastest == 0.0) {
    fmt::format_to(std::back_inserter(text), "{:<12}no corner moves\n", "fastest");
  } else if (summary.keys > 1) {
    fmt::format_to(std::back_inserter(text), "{:<12}{} pixels a frame, {} to frame {}\n", "fastest",
                   printed(summary.fastest, 2), kCornerNames[summary.fastest_corner],
                   printed(summary.fastest_frame, 3));
  }
  addFrames(text, "degenerate", summary.degenerate);
  addFrames(text, "crossing", summary.crossing);
  addFrames(text, "bilinear", summary.bilinear);
  return text;
}

}  // namespace vantorel::tracks
