// Three-component vectors, for positions in metres and for linear colours, and the random numbers of the path tracer.
#pragma once

#include <cmath>
#include <cstdint>
#include <numbers>

namespace vantorel::scene {

struct Vec {
  float x = 0;
  float y = 0;
  float z = 0;
};

inline Vec operator+(Vec a, Vec b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vec operator-(Vec a, Vec b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vec operator*(Vec a, Vec b) {
  return {a.x * b.x, a.y * b.y, a.z * b.z};
}
inline Vec operator/(Vec a, Vec b) {
  return {a.x / b.x, a.y / b.y, a.z / b.z};
}
inline Vec operator*(Vec a, float s) {
  return {a.x * s, a.y * s, a.z * s};
}
inline float dot(Vec a, Vec b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline Vec cross(Vec a, Vec b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline Vec normalized(Vec a) {
  return a * (1.0F / std::sqrt(dot(a, a)));
}

// A rotation about the vertical axis, anticlockwise seen from above.
struct Turn {
  float cosine = 1;
  float sine = 0;

  static Turn by(float radians) { return {std::cos(radians), std::sin(radians)}; }
  Vec apply(Vec a) const { return {cosine * a.x + sine * a.z, a.y, cosine * a.z - sine * a.x}; }
  Vec undo(Vec a) const { return {cosine * a.x - sine * a.z, a.y, cosine * a.z + sine * a.x}; }
};

// Uniform numbers from 0 to below 1 (PCG).
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed * 2685821657736338717U + 1442695040888963407U) { next(); }

  float next() {
    const std::uint64_t old = state_;
    state_ = old * 6364136223846793005U + 1442695040888963407U;
    const auto shifted = static_cast<std::uint32_t>(((old >> 18U) ^ old) >> 27U);
    const auto rotation = static_cast<std::uint32_t>(old >> 59U);
    const std::uint32_t bits = (shifted >> rotation) | (shifted << ((32U - rotation) & 31U));
    return static_cast<float>(bits >> 8U) * 0x1p-24F;
  }

  // A unit vector, all directions alike.
  Vec direction() {
    const float height = 1.0F - 2.0F * next();
    const float angle = 2.0F * std::numbers::pi_v<float> * next();
    const float radius = std::sqrt(1.0F - height * height);
    return {radius * std::cos(angle), height, radius * std::sin(angle)};
  }

  // A unit vector, distributed by the cosine of the angle to the normal.
  Vec cosineDirection(Vec normal) { return normalized(normal * 1.0001F + direction()); }

 private:
  std::uint64_t state_;
};

}  // namespace vantorel::scene
