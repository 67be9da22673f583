#include "python/Geometry.h"

#include "bridges/common/EmbeddedModule.h"
#include "host/Instance.h"

namespace vantorel::python {

namespace {

double crossProduct(const host::Point& a, const host::Point& b, const host::Point& c) {
  return (b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x);
}

bool isStrictlyConvex(const host::Corners& c) {
  const double turns[]{crossProduct(c.upper_left, c.upper_right, c.lower_right),
                       crossProduct(c.upper_right, c.lower_right, c.lower_left),
                       crossProduct(c.lower_right, c.lower_left, c.upper_left),
                       crossProduct(c.lower_left, c.upper_left, c.upper_right)};
  bool all_right = true;
  bool all_left = true;
  for (const double turn : turns) {
    all_right = all_right && turn > 0.0;
    all_left = all_left && turn < 0.0;
  }
  return all_right || all_left;
}

void checkRange(const host::Corners& corners) {
  for (std::size_t i = 0; i < host::kCornerCount; ++i) {
    if (!host::isCoordinate(corners[i].x) || !host::isCoordinate(corners[i].y)) {
      refuse("corners", "the " + std::string(host::kCornerNames[i]) +
                            " one is out of range; give numbers from -32768 to below 32768");
    }
  }
}

}  // namespace

// The unit square's map onto the quadrilateral, with its columns divided by the layer's width and height.
py::array_t<double> homography(const py::object& corners, const std::pair<std::int64_t, std::int64_t>& size) {
  const host::Size layer = sizeFrom(size, "size");
  const host::Corners q = cornersFrom(corners, "corners");
  checkRange(q);
  if (!isStrictlyConvex(q)) {
    refuse("corners", "they are not strictly convex, so no projective map fits; move a corner");
  }
  const host::Point to_right{q.upper_right.x - q.lower_right.x, q.upper_right.y - q.lower_right.y};
  const host::Point to_left{q.lower_left.x - q.lower_right.x, q.lower_left.y - q.lower_right.y};
  const host::Point skew{q.upper_left.x - q.upper_right.x - q.lower_left.x + q.lower_right.x,
                         q.upper_left.y - q.upper_right.y - q.lower_left.y + q.lower_right.y};
  const double area = to_right.x * to_left.y - to_right.y * to_left.x;
  const double g = (skew.x * to_left.y - skew.y * to_left.x) / area;
  const double h = (to_right.x * skew.y - to_right.y * skew.x) / area;
  py::array_t<double> matrix({3, 3});
  auto m = matrix.mutable_unchecked<2>();
  const double w = layer.width;
  const double t = layer.height;
  m(0, 0) = (q.upper_right.x * (1.0 + g) - q.upper_left.x) / w;
  m(0, 1) = (q.lower_left.x * (1.0 + h) - q.upper_left.x) / t;
  m(0, 2) = q.upper_left.x;
  m(1, 0) = (q.upper_right.y * (1.0 + g) - q.upper_left.y) / w;
  m(1, 1) = (q.lower_left.y * (1.0 + h) - q.upper_left.y) / t;
  m(1, 2) = q.upper_left.y;
  m(2, 0) = g / w;
  m(2, 1) = h / t;
  m(2, 2) = 1.0;
  return matrix;
}

std::tuple<int, int, int, int> boundingBox(const py::object& corners,
                                           const std::pair<std::int64_t, std::int64_t>& size) {
  const host::Size layer = sizeFrom(size, "size");
  host::Instance instance(valueOrRaise(bridges::embeddedModule()));
  if (const host::Result<void> set = instance.setCorners(cornersFrom(corners, "corners")); !set) {
    raise(set.error());
  }
  const host::Rect box = valueOrRaise(instance.boundingBox(layer, {}));
  return {box.left, box.top, box.right, box.bottom};
}

}  // namespace vantorel::python
