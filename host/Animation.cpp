#include "host/Animation.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vantorel::host {

namespace {

// A strict order also where a time is not a number.
bool earlier(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) {
    return !std::isnan(a) && std::isnan(b);
  }
  return a < b;
}

}  // namespace

AnimatedPoint::AnimatedPoint(std::vector<Key> keys, Interpolation interpolation)
    : keys_(std::move(keys)), interpolation_(interpolation) {
  std::stable_sort(keys_.begin(), keys_.end(),
                   [](const Key& a, const Key& b) { return earlier(a.seconds, b.seconds); });
  // Among keys of one time, which stand in the caller's order, only the last stays.
  const auto same_time = [](const Key& a, const Key& b) { return a.seconds == b.seconds; };
  keys_.erase(keys_.begin(), std::unique(keys_.rbegin(), keys_.rend(), same_time).base());
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
  const double share = (seconds - before.seconds) / (next->seconds - before.seconds);
  return {before.value.x + (next->value.x - before.value.x) * share,
          before.value.y + (next->value.y - before.value.y) * share};
}

const AnimatedPoint& AnimatedCorners::operator[](std::size_t corner) const {
  static constexpr std::array kCorners{&AnimatedCorners::upper_left, &AnimatedCorners::upper_right,
                                       &AnimatedCorners::lower_left, &AnimatedCorners::lower_right};
  return this->*kCorners[corner];
}

}  // namespace vantorel::host
