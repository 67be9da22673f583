// How code values stand for light.
#pragma once

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
// value for curves such as the above. Outside of the octaves of half floats it calls the function.
class CurveTable {
 public:
  explicit CurveTable(std::function<double(double)> curve);
  CurveTable(const CurveTable&) = delete;
  CurveTable& operator=(const CurveTable&) = delete;

  // The octaves that are tabulated, by their exponents, and the steps in each: a float's bits, less those of the lowest
  // one, are the number of its step and the fraction in it.
  static constexpr int kLowestOctave = -24;
  static constexpr int kOctaves = 40;
  static constexpr int kStepBits = 9;
  static constexpr int kFractionBits = 23 - kStepBits;
  static constexpr std::uint32_t kLowest = static_cast<std::uint32_t>(127 + kLowestOctave) << 23;
  static constexpr std::uint32_t kSteps = static_cast<std::uint32_t>(kOctaves) << kStepBits;

  // The values at the steps' beginnings and at the last one's end; those for negative numbers come kSteps + 1 further.
  const float* values() const { return values_.data(); }
  float atZero() const { return zero_; }
  // Without the table.
  float exactly(float x) const;

 private:
  std::function<double(double)> curve_;
  std::vector<float> values_;
  float zero_;
};

}  // namespace vantorel::cli
