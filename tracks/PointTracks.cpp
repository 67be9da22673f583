#include "tracks/PointTracks.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <limits>

#include "tracks/CornerNames.h"
#include "tracks/Text.h"

namespace vantorel::tracks {

namespace {

constexpr std::size_t kListedNames = 8;

// Value at a frame, linear between keys and held outside; `next` moves on with ascending frames.
double valueAt(const Channel& channel, double frame, std::size_t& next) {
  const auto& keys = channel.keys;
  while (next < keys.size() && keys[next].first < frame) {
    ++next;
  }
  if (next == keys.size()) {
    return keys.back().second;
  }
  if (next == 0 || keys[next].first == frame) {
    return keys[next].second;
  }
  const auto& [frame_before, value_before] = keys[next - 1];
  const auto& [frame_after, value_after] = keys[next];
  return value_before + (value_after - value_before) * ((frame - frame_before) / (frame_after - frame_before));
}

void sortKeys(PointTrack& point, std::string_view file) {
  const auto earlier = [](const PointKey& a, const PointKey& b) { return a.frame < b.frame; };
  if (!std::is_sorted(point.keys.begin(), point.keys.end(), earlier)) {
    std::stable_sort(point.keys.begin(), point.keys.end(), earlier);
  }
  const auto twice = std::adjacent_find(point.keys.begin(), point.keys.end(),
                                        [](const PointKey& a, const PointKey& b) { return a.frame == b.frame; });
  if (twice != point.keys.end()) {
    const PointKey& again = *(twice + 1);
    fail(file, again.line, "frame",
         fmt::format("frame {} is on line {} already; keep one of them", printed(again.frame, 6), twice->line));
  }
}

using Roles = std::array<std::size_t, kCornerCount>;  // for each corner, the index of its point
constexpr std::size_t kNoPoint = std::numeric_limits<std::size_t>::max();

// The points whose names stand for corners, if each corner is named exactly once.
bool rolesByName(const std::vector<PointTrack>& points, Roles& roles) {
  roles.fill(kNoPoint);
  for (std::size_t p = 0; p < points.size(); ++p) {
    const auto corner = cornerOfName(points[p].name);
    if (!corner) {
      continue;
    }
    if (roles[*corner] != kNoPoint) {
      return false;
    }
    roles[*corner] = p;
  }
  return std::find(roles.begin(), roles.end(), kNoPoint) == roles.end();
}

std::string namesOf(const std::vector<PointTrack>& points) {
  std::string names;
  for (std::size_t p = 0; p < std::min(points.size(), kListedNames); ++p) {
    names += p == 0 ? "" : ", ";
    names += quoted(points[p].name);
  }
  return names + (points.size() > kListedNames ? ", ..." : "");
}

void requireKeys(const std::vector<PointTrack>& points, const std::string& file) {
  const auto has_keys = [](const PointTrack& point) { return !point.keys.empty(); };
  if (std::none_of(points.begin(), points.end(), has_keys)) {
    fail(file, 0, "", "holds no keys; export the track with a key on every frame");
  }
  const auto bare = std::find_if_not(points.begin(), points.end(), has_keys);
  if (bare != points.end()) {
    fail(file, 0, bare->name, "has no keys; every corner needs a position");
  }
}

// The smallest frame that any point has a key on next; false when all are done.
bool nextFrame(const std::array<const PointTrack*, kCornerCount>& points,
               const std::array<std::size_t, kCornerCount>& at, double& frame) {
  bool found = false;
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    if (!points[c]->constant && at[c] < points[c]->keys.size()) {
      const double candidate = points[c]->keys[at[c]].frame;
      frame = found ? std::min(frame, candidate) : candidate;
      found = true;
    }
  }
  return found;
}

void setCorner(CornerKey& key, std::size_t corner, const PointKey& from) {
  key.points[corner] = from.value;
  key.present = static_cast<std::uint8_t>(key.present | 1u << corner);
  key.percent = static_cast<std::uint8_t>(key.percent | unsigned{from.percent} << 2 * corner);
  key.line = key.line == 0 ? from.line : key.line;
}

std::vector<CornerKey> mergeKeys(const std::array<const PointTrack*, kCornerCount>& points) {
  std::vector<CornerKey> keys;
  keys.reserve(points[0]->keys.size());
  std::array<std::size_t, kCornerCount> at{};
  double frame = 0.0;
  while (nextFrame(points, at, frame)) {
    CornerKey& key = keys.emplace_back();
    key.frame = frame;
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      if (points[c]->constant) {
        setCorner(key, c, points[c]->keys.front());
      } else if (at[c] < points[c]->keys.size() && points[c]->keys[at[c]].frame == frame) {
        setCorner(key, c, points[c]->keys[at[c]]);
        ++at[c];
      }
    }
  }
  if (keys.empty()) {  // all are constant
    CornerKey& key = keys.emplace_back();
    key.frame = 1.0;
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      setCorner(key, c, points[c]->keys.front());
    }
  }
  return keys;
}

}  // namespace

PointTrack joinChannels(std::string name, Channel x, Channel y, std::string_view file) {
  PointTrack point{std::move(name), {}, x.constant && y.constant};
  const auto earlier = [](const auto& a, const auto& b) { return a.first < b.first; };
  for (Channel* channel : {&x, &y}) {
    if (channel->keys.empty()) {
      fail(file, std::max(x.line, y.line), point.name,
           "has no keys for one of its coordinates; every corner needs a position");
    }
    std::stable_sort(channel->keys.begin(), channel->keys.end(), earlier);
    const auto twice = std::adjacent_find(channel->keys.begin(), channel->keys.end(),
                                          [](const auto& a, const auto& b) { return a.first == b.first; });
    if (twice != channel->keys.end()) {
      fail(file, channel->line, point.name,
           fmt::format("has two keys on frame {}; keep one of them", printed(twice->first, 6)));
    }
  }
  std::size_t next_x = 0;
  std::size_t next_y = 0;
  std::size_t from_x = x.constant && !y.constant ? x.keys.size() : 0;
  std::size_t from_y = y.constant && !x.constant ? y.keys.size() : 0;
  while (from_x < x.keys.size() || from_y < y.keys.size()) {
    const bool takes_x =
        from_y == y.keys.size() || (from_x < x.keys.size() && x.keys[from_x].first <= y.keys[from_y].first);
    const double frame = takes_x ? x.keys[from_x].first : y.keys[from_y].first;
    point.keys.push_back({frame, {valueAt(x, frame, next_x), valueAt(y, frame, next_y)}, x.line, 0});
    from_x += from_x < x.keys.size() && x.keys[from_x].first == frame ? 1u : 0u;
    from_y += from_y < y.keys.size() && y.keys[from_y].first == frame ? 1u : 0u;
  }
  return point;
}

CornerTrack joinPoints(TrackDocument document, const std::string& file) {
  std::vector<PointTrack>& points = document.points;
  Roles roles{};
  const bool named = rolesByName(points, roles);
  if (!named) {
    if (points.empty()) {
      fail(file, 0, "", "holds no keys; export the track with a key on every frame");
    }
    if (points.size() != kCornerCount) {
      fail(file, 0, "",
           fmt::format("has {} ({}) where four are expected; name four of them ul, ur, ll and lr, or give four "
                       "files of one point each",
                       counted(points.size(), "point"), namesOf(points)));
    }
    roles = {0, 1, 2, 3};
  }
  if (named && points.size() > kCornerCount) {
    std::vector<PointTrack> chosen;
    for (const std::size_t role : roles) {
      chosen.push_back(std::move(points[role]));
    }
    points = std::move(chosen);
    roles = {0, 1, 2, 3};
  }
  requireKeys(points, file);
  for (PointTrack& point : points) {
    sortKeys(point, file);
  }
  CornerTrack track;
  track.source = file;
  track.keys = mergeKeys({&points[roles[0]], &points[roles[1]], &points[roles[2]], &points[roles[3]]});
  if (std::vector<PointTrack>& source = document.source_points; !source.empty()) {
    for (PointTrack& point : source) {
      sortKeys(point, file);
    }
    track.source_keys =
        mergeKeys({&source[kUpperLeft], &source[kUpperRight], &source[kLowerLeft], &source[kLowerRight]});
  }
  track.interpolation = document.interpolation;
  track.conventions = document.conventions;
  track.corners_named = named;
  track.from = document.from;
  track.inverted = document.inverted;
  return track;
}

}  // namespace vantorel::tracks
