#include "bench/quality/Mapping.h"

#include <algorithm>
#include <stdexcept>

namespace vantorel::quality {

namespace {

using Matrix = std::array<std::array<double, 3>, 3>;

// The homography from the unit square, (0, 0) (1, 0) (1, 1) (0, 1), to the ring.
Matrix unitSquareTo(const Ring& p) {
  const host::Point sum{p[0].x - p[1].x + p[2].x - p[3].x, p[0].y - p[1].y + p[2].y - p[3].y};
  const host::Point right{p[1].x - p[2].x, p[1].y - p[2].y};
  const host::Point bottom{p[3].x - p[2].x, p[3].y - p[2].y};
  const double determinant = right.x * bottom.y - bottom.x * right.y;
  const double g = (sum.x * bottom.y - bottom.x * sum.y) / determinant;
  const double h = (right.x * sum.y - sum.x * right.y) / determinant;
  return {{{p[1].x - p[0].x + g * p[1].x, p[3].x - p[0].x + h * p[3].x, p[0].x},
           {p[1].y - p[0].y + g * p[1].y, p[3].y - p[0].y + h * p[3].y, p[0].y},
           {g, h, 1.0}}};
}

// The inverse up to a factor.
Matrix adjugate(const Matrix& m) {
  Matrix result{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      const std::size_t r = (j + 1) % 3;
      const std::size_t s = (j + 2) % 3;
      const std::size_t t = (i + 1) % 3;
      const std::size_t u = (i + 2) % 3;
      result[i][j] = m[r][t] * m[s][u] - m[r][u] * m[s][t];
    }
  }
  return result;
}

host::Point between(const host::Point& from, const host::Point& to, double share) {
  return {from.x + (to.x - from.x) * share, from.y + (to.y - from.y) * share};
}

}  // namespace

Ring ringOf(const host::Corners& corners) {
  return {corners.upper_left, corners.upper_right, corners.lower_right, corners.lower_left};
}

Ring ringOf(host::Size layer) {
  const double width = layer.width;
  const double height = layer.height;
  return {{{0, 0}, {width, 0}, {width, height}, {0, height}}};
}

Ring imageOfMovedOutline(host::Size layer, const Ring& ring, double pixels) {
  const Matrix map = unitSquareTo(ring);
  Ring images = ringOf(layer);
  for (host::Point& point : images) {
    const std::array<double, 3> at = {(point.x + pixels) / layer.width, (point.y + pixels) / layer.height, 1.0};
    const auto row = [&](std::size_t i) { return map[i][0] * at[0] + map[i][1] * at[1] + map[i][2] * at[2]; };
    point = {row(0) / row(2), row(1) / row(2)};
  }
  return images;
}

bool ProjectiveRow::covers(double x) const {
  const double w = w_at_0 + w_step * x;
  const double layer_x = x_at_0 + x_step * x;
  const double layer_y = y_at_0 + y_step * x;
  return w > 0.0 && layer_x >= 0.0 && layer_x < layer.width * w && layer_y >= 0.0 && layer_y < layer.height * w;
}

ProjectiveMap::ProjectiveMap(host::Size layer, const Ring& ring) : layer_(layer) {
  inverse_ = adjugate(unitSquareTo(ring));
  const host::Point inside = between(ring[0], ring[2], 0.5);
  const double w = inverse_[2][0] * inside.x + inverse_[2][1] * inside.y + inverse_[2][2];
  const std::array<double, 3> scales = {layer.width / w, layer.height / w, 1.0 / w};
  for (std::size_t i = 0; i < 3; ++i) {
    for (double& element : inverse_[i]) {
      element *= scales[i];
    }
  }
}

ProjectiveRow ProjectiveMap::row(double y) const {
  const auto at_0 = [&](std::size_t i) { return inverse_[i][1] * y + inverse_[i][2]; };
  return {at_0(0), inverse_[0][0], at_0(1), inverse_[1][0], at_0(2), inverse_[2][0], layer_};
}

ScanMap::ScanMap(host::Size layer, const Ring& ring) : ring_(ring), layer_ring_(ringOf(layer)) {
  const auto higher = [](const host::Point& a, const host::Point& b) { return a.y < b.y; };
  const auto top = static_cast<int>(std::min_element(ring.begin(), ring.end(), higher) - ring.begin());
  const auto bottom = static_cast<int>(std::max_element(ring.begin(), ring.end(), higher) - ring.begin());
  chains_ = {chainFrom(top, bottom, 3), chainFrom(top, bottom, 1)};
}

std::vector<int> ScanMap::chainFrom(int top, int bottom, int direction) const {
  std::vector<int> chain{top};
  while (chain.back() != bottom) {
    const int next = (chain.back() + direction) % 4;
    if (ring_[static_cast<std::size_t>(next)].y < ring_[static_cast<std::size_t>(chain.back())].y) {
      throw std::invalid_argument("a chain of the quadrilateral's edges runs upwards; choose other corners");
    }
    chain.push_back(next);
  }
  return chain;
}

ScanMap::Crossing ScanMap::crossing(const std::vector<int>& chain, double y) const {
  std::size_t edge = 0;
  while (edge + 2 < chain.size() && y >= ring_[static_cast<std::size_t>(chain[edge + 1])].y) {
    ++edge;
  }
  const auto from = static_cast<std::size_t>(chain[edge]);
  const auto to = static_cast<std::size_t>(chain[edge + 1]);
  const double share = (y - ring_[from].y) / (ring_[to].y - ring_[from].y);
  return {between(ring_[from], ring_[to], share).x, between(layer_ring_[from], layer_ring_[to], share)};
}

ScanRow ScanMap::row(double y) const {
  const bool is_crossed = y >= ring_[static_cast<std::size_t>(chains_[0].front())].y &&
                          y < ring_[static_cast<std::size_t>(chains_[0].back())].y;
  if (!is_crossed) {
    return {};
  }
  Crossing left = crossing(chains_[0], y);
  Crossing right = crossing(chains_[1], y);
  if (left.x > right.x) {
    std::swap(left, right);
  }
  const double width = right.x - left.x;
  return {
      left.x, right.x, left.layer, {(right.layer.x - left.layer.x) / width, (right.layer.y - left.layer.y) / width}};
}

}  // namespace vantorel::quality
