#include "bench/Workload.h"

#include <cmath>
#include <numbers>
#include <stdexcept>

namespace vantorel::bench {

namespace {

using host::Corners;
using host::Point;
using host::Size;

// A square of that side turned by 30 degrees about its middle, which stays the middle of the canvas.
Corners rotatedSquare(double side, Size canvas) {
  const double cosine = std::cos(std::numbers::pi / 6);
  const double sine = std::sin(std::numbers::pi / 6);
  const auto turned = [&](double x, double y) {
    return Point{canvas.width / 2.0 + x * cosine - y * sine, canvas.height / 2.0 + x * sine + y * cosine};
  };
  const double half = side / 2;
  return {turned(-half, -half), turned(half, -half), turned(-half, half), turned(half, half)};
}

Workload scaled(Workload workload, int factor) {
  const auto enlarge = [factor](Size& size) { size = {size.width * factor, size.height * factor}; };
  enlarge(workload.layer);
  enlarge(workload.canvas);
  for (Point* corner : {&workload.corners.upper_left, &workload.corners.upper_right, &workload.corners.lower_left,
                        &workload.corners.lower_right}) {
    *corner = {corner->x * factor, corner->y * factor};
  }
  return workload;
}

std::vector<Workload> hdWorkloads() {
  constexpr int kSquare = 760;
  return {
      {"a", kHd, kHd, {{192, 108}, {1728, 54}, {96, 972}, {1824, 1026}}},
      {"b", kHd, kHd, {{900, 300}, {1020, 300}, {-1500, 1080}, {3420, 1080}}},
      {"c", kUhd, {480, 270}, {{0, 0}, {480, 0}, {0, 270}, {480, 270}}, true},
      {"d", {960, 540}, kHd, {{0, 0}, {1920, 0}, {0, 1080}, {1920, 1080}}},
      {"e", {kSquare, kSquare}, kHd, rotatedSquare(kSquare, kHd)},
      {"f", kHd, kHd, {{192, 108}, {1728, 54}, {96, 972}, {1000, 500}}, false, false},
      {"g", kHd, kHd, {{800, 450}, {1100, 460}, {790, 650}, {1120, 640}}},
  };
}

}  // namespace

std::vector<Workload> workloadsAt(int factor) {
  std::vector<Workload> workloads;
  for (const Workload& workload : hdWorkloads()) {
    if (factor == 1 || !workload.minifies) {
      workloads.push_back(scaled(workload, factor));
    }
  }
  return workloads;
}

Workload hdWorkload(const std::string& name) {
  for (const Workload& workload : hdWorkloads()) {
    if (workload.name == name) {
      return workload;
    }
  }
  throw std::invalid_argument("there is no workload " + name);
}

}  // namespace vantorel::bench
