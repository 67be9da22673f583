#include "bench/quality/Truth.h"

#include <algorithm>
#include <atomic>
#include <thread>

namespace vantorel::quality {

namespace {

// Two neighbouring pixels along one axis, and the second one's weight.
struct Neighbours {
  int first;
  int second;
  float share;
};

// The neighbours of a position; pixel k's centre lies at k + 0.5.
Neighbours neighbours(double position, int count) {
  const double from_centre = std::clamp(position - 0.5, 0.0, static_cast<double>(count - 1));
  const int first = static_cast<int>(from_centre);
  return {first, std::min(first + 1, count - 1), static_cast<float>(from_centre - first)};
}

float mix(float first, float second, float share) {
  return first + (second - first) * share;
}

float sample(const Layer& layer, const Neighbours& x, const Neighbours& y) {
  return mix(mix(layer.at(x.first, y.first), layer.at(x.second, y.first), x.share),
             mix(layer.at(x.first, y.second), layer.at(x.second, y.second), x.share), y.share);
}

template <typename Map>
class Sampler {
 public:
  Sampler(std::span<const Layer> layers, const Map& map, Truth& truth) : layers_(layers), map_(map), truth_(truth) {}

  void drawRow(int y) const {
    for (int x = truth_.frame.left; x < truth_.frame.right; ++x) {
      switch (truth_.regions[truth_.index(x, y)]) {
        case Region::Inside:
          drawPixel<false>(x, y, kInsideSamples);
          break;
        case Region::Edge:
          drawPixel<true>(x, y, kEdgeSamples);
          break;
        case Region::Outside:
          break;
      }
    }
  }

 private:
  template <bool kCut>
  void drawPixel(int x, int y, int samples) const {
    std::vector<double> sums(layers_.size());
    int covered = 0;
    for (int j = 0; j < samples; ++j) {
      const auto row = map_.row(y + (j + 0.5) / samples);
      for (int i = 0; i < samples; ++i) {
        const double at = x + (i + 0.5) / samples;
        if (kCut && !row.covers(at)) {
          continue;
        }
        ++covered;
        addSamples(row.position(at), sums);
      }
    }
    const double count = double{1} * samples * samples;
    const std::size_t index = truth_.index(x, y);
    truth_.alpha[index] = static_cast<float>(255.0 * covered / count);
    for (std::size_t i = 0; i < sums.size(); ++i) {
      truth_.grey[i][index] = static_cast<float>(sums[i] / count);
    }
  }

  void addSamples(const host::Point& position, std::vector<double>& sums) const {
    const Neighbours x = neighbours(position.x, layers_[0].size.width);
    const Neighbours y = neighbours(position.y, layers_[0].size.height);
    for (std::size_t i = 0; i < sums.size(); ++i) {
      sums[i] += static_cast<double>(sample(layers_[i], x, y));
    }
  }

  std::span<const Layer> layers_;
  const Map& map_;
  Truth& truth_;
};

// Calls draw(y) for every row, from as many threads as there are processors.
template <typename Draw>
void eachRow(int top, int bottom, const Draw& draw) {
  std::atomic<int> next = top;
  const auto work = [&] {
    for (int y = next++; y < bottom; y = next++) {
      draw(y);
    }
  };
  std::vector<std::jthread> others(std::max(1U, std::thread::hardware_concurrency()) - 1);
  for (std::jthread& thread : others) {
    thread = std::jthread(work);
  }
  work();
}

}  // namespace

Truth blankTruth(std::size_t layers, const Ring& ring, host::Size canvas) {
  Truth truth;
  truth.frame = frameOf(ring, canvas);
  truth.regions = regionsOf(ring, truth.frame);
  truth.alpha.resize(truth.regions.size());
  truth.grey.assign(layers, std::vector<float>(truth.regions.size()));
  return truth;
}

Truth truthOf(std::span<const Layer> layers, const Mapping& mapping, const Ring& ring, host::Size canvas) {
  Truth truth = blankTruth(layers.size(), ring, canvas);
  std::visit(
      [&](const auto& map) {
        const Sampler sampler(layers, map, truth);
        eachRow(truth.frame.top, truth.frame.bottom, [&](int y) { sampler.drawRow(y); });
      },
      mapping);
  return truth;
}

}  // namespace vantorel::quality
