#include "host/geometry/AspectEstimate.h"

#include <cmath>

namespace vantorel::host {

namespace {

// If the relative difference in depth between opposite sides is smaller than this, the focal length would be determined
// by rounding errors.
constexpr double kLeastConvergence = 0.02;
// Angles with a smaller cosine count as right angles, since corners are only accurate to about a pixel.
constexpr double kRightAngle = 0.01;

struct Vector {
  double x;
  double y;
  double z;
};

Vector cross(const Vector& a, const Vector& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double dot(const Vector& a, const Vector& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
double distance(const Point& a, const Point& b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}

double ratioOfSides(const Corners& c) {
  const double width = distance(c.upper_left, c.upper_right) + distance(c.lower_left, c.lower_right);
  const double height = distance(c.upper_left, c.lower_left) + distance(c.upper_right, c.lower_right);
  return width > 0.0 && height > 0.0 ? width / height : 1.0;
}

}  // namespace

AspectEstimate estimateAspect(const Corners& corners, Size picture_size) {
  const Point centre{picture_size.width / 2.0, picture_size.height / 2.0};
  // Lengths are in units of the picture's size, which keeps the terms of the equations at a similar magnitude.
  const double unit = std::hypot(picture_size.width, picture_size.height) / 2.0;
  const auto ray = [&](const Point& p) { return Vector{(p.x - centre.x) / unit, (p.y - centre.y) / unit, 1.0}; };
  const Vector origin = ray(corners.upper_left);
  const Vector right = ray(corners.upper_right);
  const Vector below = ray(corners.lower_left);
  const Vector opposite = ray(corners.lower_right);
  // The neighbours' depths relative to the origin's; they follow from the rectangle being planar.
  const double right_depth = dot(cross(origin, opposite), below) / dot(cross(right, opposite), below);
  const double below_depth = dot(cross(origin, opposite), right) / dot(cross(below, opposite), right);
  // The sides' directions in space, except that z still has to be multiplied by the focal length.
  const Vector across{right_depth * right.x - origin.x, right_depth * right.y - origin.y, right_depth - 1.0};
  const Vector down{below_depth * below.x - origin.x, below_depth * below.y - origin.y, below_depth - 1.0};
  const double flat_product = across.x * down.x + across.y * down.y;
  const double across_length = std::hypot(across.x, across.y);
  const double down_length = std::hypot(down.x, down.y);
  const AspectEstimate from_sides{ratioOfSides(corners), 0.0, false};
  if (!std::isfinite(across_length) || !std::isfinite(down_length) || !(down_length > 0.0 && across_length > 0.0)) {
    return from_sides;
  }
  const bool across_is_level = std::abs(across.z) < kLeastConvergence;
  const bool down_is_level = std::abs(down.z) < kLeastConvergence;
  if (across_is_level && down_is_level && std::abs(flat_product) < kRightAngle * across_length * down_length) {
    return {across_length / down_length, 0.0, true};
  }
  const double focal_squared = -flat_product / (across.z * down.z);
  if (across_is_level || down_is_level || !(focal_squared > 0.0) || !std::isfinite(focal_squared)) {
    return from_sides;
  }
  const auto length = [&](const Vector& v, double flat) { return std::sqrt(flat * flat / focal_squared + v.z * v.z); };
  return {length(across, across_length) / length(down, down_length), std::sqrt(focal_squared) * unit, true};
}

}  // namespace vantorel::host
