// Animated corner points: keys over time, and the interpolation between them.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

namespace vantorel::host {

struct Point {
  double x = 0.0;
  double y = 0.0;
  bool operator==(const Point&) const = default;
};

// The range of coordinates that the effect's 16.16 numbers can hold, in pixels: from kMinCoordinate up to, but not
// including, kCoordinateEnd.
inline constexpr double kMinCoordinate = -32768.0;
inline constexpr double kCoordinateEnd = 32768.0;

// False for NaN too.
constexpr bool isCoordinate(double pixels) {
  return pixels >= kMinCoordinate && pixels < kCoordinateEnd;
}

// The corners in the order of the effect's parameters.
inline constexpr std::size_t kCornerCount = 4;
inline constexpr std::array<std::string_view, kCornerCount> kCornerNames{"upper left", "upper right", "lower left",
                                                                         "lower right"};

// The four corners that the layer is drawn onto, in full-resolution layer pixels.
struct Corners {
  Point upper_left;
  Point upper_right;
  Point lower_left;
  Point lower_right;
  bool operator==(const Corners&) const = default;

  // By its index in kCornerNames, below kCornerCount.
  const Point& operator[](std::size_t corner) const;
};

// Smooth: a monotone cubic, which passes smoothly through the keys and never overshoots them.
enum class Interpolation { Linear, Hold, Smooth };

// One point over time. Times are in seconds; values are held before the first and after the last key.
class AnimatedPoint {
 public:
  struct Key {
    double seconds = 0.0;
    Point value;
  };

  AnimatedPoint() = default;
  explicit AnimatedPoint(Point constant) : keys_{{0.0, constant}} {}
  // Keys in any order; of two with the same time, the later one in the list wins.
  AnimatedPoint(std::vector<Key> keys, Interpolation interpolation);

  // One value for all times. Allocates nothing if there was a key before.
  void setConstant(Point constant);

  // The value at a time. At a key's time it is exactly that key's value; without keys it is (0, 0).
  Point at(double seconds) const;

  // The keys in ascending order, one per time; keys with a NaN time come last.
  const std::vector<Key>& keys() const { return keys_; }

 private:
  std::vector<Key> keys_;
  Interpolation interpolation_ = Interpolation::Linear;
};

// The effect's four animated parameters.
struct AnimatedCorners {
  AnimatedPoint upper_left;
  AnimatedPoint upper_right;
  AnimatedPoint lower_left;
  AnimatedPoint lower_right;

  Corners at(double seconds) const;

  // The same corners for all times. Allocates nothing if every point had a key before.
  void setConstant(const Corners& corners);

  // By its index in kCornerNames, below kCornerCount.
  const AnimatedPoint& operator[](std::size_t corner) const;
};

}  // namespace vantorel::host
