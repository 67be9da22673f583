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

void takeExtremes(const Quadrilateral& q, TrackSummary& summary) {
  for (const Point& point : q) {
    summary.least = {std::min(summary.least.x, point.x), std::min(summary.least.y, point.y)};
    summary.most = {std::max(summary.most.x, point.x), std::max(summary.most.y, point.y)};
  }
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
  summary.least = summary.most = keys.front().points[0];
  for (std::size_t k = 0; k < keys.size(); ++k) {
    takeExtremes(keys[k].points, summary);
    if (k > 0) {
      takeSpeed(keys[k - 1], keys[k], summary);
    }
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
  fmt::format_to(std::back_inserter(text), "{:<12}{},{} to {},{} pixels\n", "positions", printed(summary.least.x, 2),
                 printed(summary.least.y, 2), printed(summary.most.x, 2), printed(summary.most.y, 2));
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
