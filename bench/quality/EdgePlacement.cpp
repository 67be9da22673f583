#include "bench/quality/EdgePlacement.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace vantorel::quality {

namespace {

// A row or column, values from 0 (black or transparent) to 1 (white).
struct Line {
  std::vector<double> truth;
  std::vector<double> picture;

  void add(double truth_value, double picture_value) {
    truth.push_back(truth_value);
    picture.push_back(picture_value);
  }
};

struct Step {
  std::ptrdiff_t after;  // the first pixel behind the edge
  bool rises;
};

std::vector<Step> stepsOf(const std::vector<double>& values) {
  std::vector<Step> steps;
  for (std::size_t i = 1; i < values.size(); ++i) {
    if ((values[i - 1] < 0.5) != (values[i] < 0.5)) {
      steps.push_back({static_cast<std::ptrdiff_t>(i), values[i] >= 0.5});
    }
  }
  return steps;
}

// Pixels first to last around a step.
struct Window {
  std::ptrdiff_t first;
  std::ptrdiff_t last;
};

// Half way to the neighbours, and the same distance where there is only one.
Window windowAround(const std::vector<Step>& steps, std::size_t i, std::ptrdiff_t length) {
  const std::ptrdiff_t at = steps[i].after;
  const bool has_before = i > 0;
  const bool has_behind = i + 1 < steps.size();
  std::ptrdiff_t before = has_before ? (at - steps[i - 1].after) / 2 : length;
  std::ptrdiff_t behind = has_behind ? (steps[i + 1].after - at) / 2 : length;
  before = has_before ? before : behind;
  behind = has_behind ? behind : before;
  return {std::max<std::ptrdiff_t>(0, at - before), std::min(length - 1, at + behind)};
}

bool reachesBothLevels(const std::vector<double>& truth, const Window& window, bool rises) {
  constexpr double kNearLevel = 0.01;
  const double low = truth[static_cast<std::size_t>(rises ? window.first : window.last)];
  const double high = truth[static_cast<std::size_t>(rises ? window.last : window.first)];
  return low < kNearLevel && high > 1 - kNearLevel;
}

void measure(const Line& line, EdgePlacement& placement) {
  const std::vector<Step> steps = stepsOf(line.truth);
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const Window window = windowAround(steps, i, std::ssize(line.truth));
    if (!reachesBothLevels(line.truth, window, steps[i].rises)) {
      continue;
    }
    double area = 0;
    for (std::ptrdiff_t at = window.first; at <= window.last; ++at) {
      area += line.picture[static_cast<std::size_t>(at)] - line.truth[static_cast<std::size_t>(at)];
    }
    placement.largest = std::max(placement.largest, std::abs(area));
    ++placement.edges;
  }
}

double pictureValue(const host::ConstImageView& picture, int x, int y) {
  return std::to_integer<int>(picture.pixel(x, y)[1]) / 255.0;
}

double truthValue(const Truth& truth, std::size_t layer, int x, int y) {
  const host::Rect& frame = truth.frame;
  const bool in_frame = x >= frame.left && x < frame.right && y >= frame.top && y < frame.bottom;
  return in_frame ? static_cast<double>(truth.grey[layer][truth.index(x, y)]) / 255.0 : 0.0;
}

}  // namespace

EdgePlacement edgePlacement(const host::ConstImageView& picture, const Truth& truth, std::size_t layer) {
  EdgePlacement placement;
  for (int y = 0; y < picture.size.height; ++y) {
    Line row;
    for (int x = 0; x < picture.size.width; ++x) {
      row.add(truthValue(truth, layer, x, y), pictureValue(picture, x, y));
    }
    measure(row, placement);
  }
  for (int x = 0; x < picture.size.width; ++x) {
    Line column;
    for (int y = 0; y < picture.size.height; ++y) {
      column.add(truthValue(truth, layer, x, y), pictureValue(picture, x, y));
    }
    measure(column, placement);
  }
  return placement;
}

}  // namespace vantorel::quality
