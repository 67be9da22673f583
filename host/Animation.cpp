#include "host/Animation.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/geometry/MonotoneCubic.h"

namespace vantorel::host {

namespace {

// A strict weak order even with NaN times, which sort last.
bool earlier(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) {
    return !std::isnan(a) && std::isnan(b);
  }
  return a < b;
}

// Smooth interpolation between key `next` and the one before it.
Point smoothlyBetween(const std::vector<AnimatedPoint::Key>& keys, std::size_t next, double seconds) {
  const bool has_before = next >= 2;
  // Keys with a NaN time, which come last, do not count.
  const bool has_after = next + 1 < keys.size() && !std::isnan(keys[next + 1].seconds);
  const auto along = [&](double Point::*axis) {
    const auto knot = [&](std::size_t key) { return CubicInterval::Knot{keys[key].seconds, keys[key].value.*axis}; };
    return CubicInterval{knot(has_before ? next - 2 : next - 1), knot(next - 1), knot(next),
                         knot(has_after ? next + 1 : next),      has_before,     has_after}
        .at(seconds);
  };
  return {along(&Point::x), along(&Point::y)};
}

}  // namespace

AnimatedPoint::AnimatedPoint(std::vector<Key> keys, Interpolation interpolation)
    : keys_(std::move(keys)), interpolation_(interpolation) {
  std::stable_sort(keys_.begin(), keys_.end(),
                   [](const Key& a, const Key& b) { return earlier(a.seconds, b.seconds); });
  // Of keys with the same time, which are still in the caller's order, only the last is kept.
  const auto same_time = [](const Key& a, const Key& b) { return a.seconds == b.seconds; };
  keys_.erase(keys_.begin(), std::unique(keys_.rbegin(), keys_.rend(), same_time).base());
}

void AnimatedPoint::setConstant(Point constant) {
  keys_.assign(1, {0.0, constant});
}

Point AnimatedPoint::at(double seconds) const {
  if (keys_.empty()) {
    return {};
  }
  const auto next = std::upper_bound(keys_.begin(), keys_.end(), seconds,
                                     [](double time, const Key& key) { return earlier(time, key.seconds); });
  if (next == keys_.begin()) {
    return keys_.front().value;
  }
  const Key& before = *(next - 1);
  if (next == keys_.end() || interpolation_ == Interpolation::Hold || before.seconds == seconds) {
    return before.value;
  }
  if (interpolation_ == Interpolation::Smooth) {
    return smoothlyBetween(keys_, static_cast<std::size_t>(next - keys_.begin()), seconds);
  }
  const double share = (seconds - before.seconds) / (next->seconds - before.seconds);
  return {before.value.x + (next->value.x - before.value.x) * share,
          before.value.y + (next->value.y - before.value.y) * share};
}

const Point& Corners::operator[](std::size_t corner) const {
  static constexpr std::array kCorners{&Corners::upper_left, &Corners::upper_right, &Corners::lower_left,
                                       &Corners::lower_right};
  return this->*kCorners[corner];
}

void AnimatedCorners::setConstant(const Corners& corners) {
  upper_left.setConstant(corners.upper_left);
  upper_right.setConstant(corners.upper_right);
  lower_left.setConstant(corners.lower_left);
  lower_right.setConstant(corners.lower_right);
}

Corners AnimatedCorners::at(double seconds) const {
  return {upper_left.at(seconds), upper_right.at(seconds), lower_left.at(seconds), lower_right.at(seconds)};
}

const AnimatedPoint& AnimatedCorners::operator[](std::size_t corner) const {
  static constexpr std::array kCorners{&AnimatedCorners::upper_left, &AnimatedCorners::upper_right,
                                       &AnimatedCorners::lower_left, &AnimatedCorners::lower_right};
  return this->*kCorners[corner];
}

}  // namespace vantorel::host
