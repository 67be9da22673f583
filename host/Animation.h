// Animated corner points: keys over time with linear or held values between them.
#pragma once

#include <array>
#include <vector>

namespace vantorel::host {

struct Point {
  double x = 0.0;
  double y = 0.0;
  bool operator==(const Point&) const = default;
};

// The four corners that the effect stretches the layer onto, in full-resolution layer pixels.
struct Corners {
  Point upper_left;
  Point upper_right;
  Point lower_left;
  Point lower_right;
  bool operator==(const Corners&) const = default;
};

enum class Interpolation { Linear, Hold };

// One point over time. Times are in seconds; values are held before the first and after the last key.
class AnimatedPoint {
 public:
  struct Key {
    double seconds = 0.0;
    Point value;
  };

  AnimatedPoint() = default;
  explicit AnimatedPoint(Point constant) : keys_{{0.0, constant}} {}
  // Keys in any order; of two at the same time the later in the list wins.
  AnimatedPoint(std::vector<Key> keys, Interpolation interpolation);

  // The value at a time; at a key's own time exactly that key's value. Without keys, (0, 0).
  Point at(double seconds) const;

  // The keys in the order of their times, one for a time; keys whose time is not a number come last.
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
};

}  // namespace vantorel::host
