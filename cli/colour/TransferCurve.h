// How code values stand for light.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

namespace vantorel::cli {

enum class TransferKind { Linear, Gamma, Srgb, Rec709, ProPhoto, AcesCct, Cineon };

// Code values from 0 to 1 for light, where 1 is white; both go on beyond. Negative values mirror positive ones, but for
// the logarithmic curves, which go on as lines.
struct Transfer {
  TransferKind kind = TransferKind::Linear;
  double gamma = 1.0;  // of kind Gamma, the exponent that makes light of code values

  bool isLinear() const { return kind == TransferKind::Linear; }
  double decode(double code) const;   // to light
  double encode(double light) const;  // to code values
  bool operator==(const Transfer&) const = default;
};

// A function for the many: tabulated with 512 steps an octave and linear in between, within 2e-6 of the function's own
// value for curves such as the above. Outside of the octaves around 1 it calls the function.
class CurveTable {
 public:
  explicit CurveTable(std::function<double(double)> curve);

  float operator()(float x) const {
    const float magnitude = std::abs(x);
    const std::uint32_t place = std::bit_cast<std::uint32_t>(magnitude) - kLowest;
    if (place >= kSteps << kFractionBits) {
      return x == 0.0f ? zero_ : static_cast<float>(curve_(double{x}));
    }
    const float* const step = (x < 0.0f ? negative_ : positive_).data() + (place >> kFractionBits);
    constexpr float kFraction = 1.0f / static_cast<float>(1u << kFractionBits);
    const float fraction = static_cast<float>(place & ((1u << kFractionBits) - 1)) * kFraction;
    return step[0] + (step[1] - step[0]) * fraction;
  }

 private:
  // The octaves that are tabulated, by their exponents, and the steps in each: a float's bits, less those of the lowest
  // one, are the number of its step and the fraction in it.
  static constexpr int kLowestOctave = -16;
  static constexpr int kOctaves = 20;
  static constexpr int kStepBits = 9;
  static constexpr int kFractionBits = 23 - kStepBits;
  static constexpr std::uint32_t kLowest = static_cast<std::uint32_t>(127 + kLowestOctave) << 23;
  static constexpr std::uint32_t kSteps = static_cast<std::uint32_t>(kOctaves) << kStepBits;

  static std::vector<float> tabulate(const std::function<double(double)>& curve, double sign);

  std::function<double(double)> curve_;
  std::vector<float> positive_;
  std::vector<float> negative_;
  float zero_;
};

}  // namespace vantorel::cli
