#include "tracks/Smoothing.h"

#include <algorithm>
#include <cmath>

#include "tracks/Quadrilaterals.h"

namespace vantorel::tracks {

namespace {

constexpr double kReach = 3.0;  // in sigmas; weights beyond are below 1.2 %
constexpr std::size_t kMaxNeighbours = 300;

// A weighted mean of quadrilaterals.
class WeightedMean {
 public:
  void add(const Quadrilateral& q, double weight) {
    weight_ += weight;
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      sum_[c].x += weight * q[c].x;
      sum_[c].y += weight * q[c].y;
    }
  }
  Quadrilateral mean() const {
    Quadrilateral q = sum_;
    for (Point& point : q) {
      point = {point.x / weight_, point.y / weight_};
    }
    return q;
  }

 private:
  Quadrilateral sum_{};
  double weight_ = 0.0;
};

Quadrilateral smoothed(const std::vector<CornerKey>& keys, std::size_t k, double sigma) {
  const double frame = keys[k].frame;
  const double radius = std::min({kReach * sigma, frame - keys.front().frame, keys.back().frame - frame});
  WeightedMean mean;
  mean.add(keys[k].points, 1.0);
  const auto add_neighbour = [&](const CornerKey& key) {
    const double distance = (key.frame - frame) / sigma;
    mean.add(key.points, std::exp(-0.5 * distance * distance));
  };
  for (std::size_t n = 1; n <= std::min(k, kMaxNeighbours) && frame - keys[k - n].frame <= radius; ++n) {
    add_neighbour(keys[k - n]);
  }
  for (std::size_t n = 1; n <= std::min(keys.size() - 1 - k, kMaxNeighbours) && keys[k + n].frame - frame <= radius;
       ++n) {
    add_neighbour(keys[k + n]);
  }
  return mean.mean();
}

}  // namespace

void smooth(std::vector<CornerKey>& keys, double sigma) {
  std::vector<Quadrilateral> results;
  results.reserve(keys.size());
  for (std::size_t k = 0; k < keys.size(); ++k) {
    results.push_back(k == 0 || k + 1 == keys.size() ? keys[k].points : smoothed(keys, k, sigma));
  }
  for (std::size_t k = 0; k < keys.size(); ++k) {
    keys[k].points = results[k];
  }
}

std::vector<double> jumps(const std::vector<CornerKey>& keys, double share) {
  const auto is_jump = [&](const CornerKey& before, const CornerKey& after) {
    const double largest = share * sizeOf(before.points);
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      if (distance(before.points[c], after.points[c]) > largest) {
        return true;
      }
    }
    return false;
  };
  std::vector<double> frames;
  for (std::size_t k = 1; k < keys.size(); ++k) {
    if (keys[k].frame - keys[k - 1].frame <= 1.0 && is_jump(keys[k - 1], keys[k])) {
      frames.push_back(keys[k].frame);
    }
  }
  return frames;
}

}  // namespace vantorel::tracks
