#include "bench/quality/EdgePlacement.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

namespace vantorel::quality {

namespace {

// Values from 0 (black or transparent) to 1 (white or opaque) on the whole canvas, rows from the top or, turned,
// columns from the left.
struct Lines {
  int count;
  int length;
  std::vector<double> values;

  double& at(int line, int place) {
    return values[static_cast<std::size_t>(line) * static_cast<std::size_t>(length) + static_cast<std::size_t>(place)];
  }
  std::span<const double> line(int i) const {
    return std::span(values).subspan(static_cast<std::size_t>(i) * static_cast<std::size_t>(length),
                                     static_cast<std::size_t>(length));
  }
};

template <typename Value>
Lines linesOf(host::Size size, bool columns, const Value& value) {
  Lines lines{columns ? size.width : size.height, columns ? size.height : size.width, {}};
  lines.values.resize(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height));
  for (int line = 0; line < lines.count; ++line) {
    for (int place = 0; place < lines.length; ++place) {
      lines.at(line, place) = columns ? value(line, place) : value(place, line);
    }
  }
  return lines;
}

struct Step {
  std::ptrdiff_t after;  // the first pixel after the edge
  bool rises;
};

std::vector<Step> stepsOf(std::span<const double> values) {
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

// Half way to the neighbours on both sides; if there is only one, the same distance on the other side.
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

// The picture and the truth of one channel, and the truth's alpha, all in one direction.
struct Directed {
  Lines picture;
  Lines truth;
  Lines alpha;
};

constexpr double kNearLevel = 0.01;

// Whether the truth is completely black and white at the ends of the window.
bool reachesBothLevels(std::span<const double> truth, const Window& window, bool rises) {
  const double low = truth[static_cast<std::size_t>(rises ? window.first : window.last)];
  const double high = truth[static_cast<std::size_t>(rises ? window.last : window.first)];
  return low < kNearLevel && high > 1 - kNearLevel;
}

// Whether holds(i) is true for all lines up to `reach` before and after.
template <typename Holds>
bool holdsAround(int line, int reach, int count, const Holds& holds) {
  if (line < reach || line + reach >= count) {
    return false;
  }
  for (int i = line - reach; i <= line + reach; ++i) {
    if (!holds(i)) {
      return false;
    }
  }
  return true;
}

bool counts(const Directed& lines, int line, const Window& window, bool rises, int layer_pixel) {
  const auto high_end = static_cast<std::size_t>(rises ? window.last : window.first);
  return holdsAround(line, layer_pixel / 4, lines.truth.count,
                     [&](int i) { return reachesBothLevels(lines.truth.line(i), window, rises); }) &&
         holdsAround(line, layer_pixel + 1, lines.alpha.count,
                     [&](int i) { return lines.alpha.line(i)[high_end] > 1 - kNearLevel; });
}

void measureLine(const Directed& lines, int line, int layer_pixel, EdgePlacement& placement) {
  const std::span<const double> truth = lines.truth.line(line);
  const std::span<const double> picture = lines.picture.line(line);
  const std::vector<Step> steps = stepsOf(truth);
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const Window window = windowAround(steps, i, std::ssize(truth));
    if (!counts(lines, line, window, steps[i].rises, layer_pixel)) {
      continue;
    }
    double area = 0;
    for (auto at = static_cast<std::size_t>(window.first); at <= static_cast<std::size_t>(window.last); ++at) {
      area += picture[at] - truth[at];
    }
    placement.largest = std::max(placement.largest, std::abs(area));
    ++placement.edges;
  }
}

// A value of the truth at a canvas pixel, 0 to 1.
double truthAt(const Truth& truth, const std::vector<float>& channel, int x, int y) {
  const host::Rect& frame = truth.frame;
  const bool in_frame = x >= frame.left && x < frame.right && y >= frame.top && y < frame.bottom;
  return in_frame ? static_cast<double>(channel[truth.index(x, y)]) / 255.0 : 0.0;
}

}  // namespace

EdgePlacement edgePlacement(const host::ConstImageView& picture, const Truth& truth, std::size_t layer,
                            int layer_pixel) {
  EdgePlacement placement;
  for (const bool columns : {false, true}) {
    const Directed lines = {
        linesOf(picture.size, columns,
                [&](int x, int y) { return std::to_integer<int>(picture.pixel(x, y)[1]) / 255.0; }),
        linesOf(picture.size, columns, [&](int x, int y) { return truthAt(truth, truth.grey[layer], x, y); }),
        linesOf(picture.size, columns, [&](int x, int y) { return truthAt(truth, truth.alpha, x, y); })};
    for (int line = 0; line < lines.truth.count; ++line) {
      measureLine(lines, line, layer_pixel, placement);
    }
  }
  return placement;
}

}  // namespace vantorel::quality
