// Transfer curves between code values and light.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace vantorel::cli {

enum class TransferKind { Linear, Gamma, Srgb, Rec709, ProPhoto, AcesCct, Cineon };

// Maps code values from 0 to 1 to light, where 1 is white; both extend beyond. Curves are mirrored for negative values,
// except the logarithmic ones, which continue as straight lines.
struct Transfer {
  TransferKind kind = TransferKind::Linear;
  double gamma = 1.0;  // for kind Gamma, the exponent that converts code values to light

  bool isLinear() const { return kind == TransferKind::Linear; }
  double decode(double code) const;   // to light
  double encode(double light) const;  // to code values
  bool operator==(const Transfer&) const = default;
};

// A curve for many values: tabulated with 512 steps per octave and linear in between, which is within 2e-6 of the exact
// value for the curves above. Outside the range of half floats it calls the exact function.
class CurveTable {
 public:
  explicit CurveTable(std::function<double(double)> curve);
  CurveTable(const CurveTable&) = delete;
  CurveTable& operator=(const CurveTable&) = delete;

  // The octaves that are tabulated, by their exponents, and the steps in each: the bits of a float, minus those of the
  // lowest tabulated one, are its step number followed by the fraction within the step.
  static constexpr int kLowestOctave = -24;
  static constexpr int kOctaves = 40;
  static constexpr int kStepBits = 9;
  static constexpr int kFractionBits = 23 - kStepBits;
  static constexpr std::uint32_t kLowest = static_cast<std::uint32_t>(127 + kLowestOctave) << 23;
  static constexpr std::uint32_t kSteps = static_cast<std::uint32_t>(kOctaves) << kStepBits;

  // The values at the beginning of each step and at the end of the last one; those for negative numbers follow kSteps +
  // 1 later.
  const float* values() const { return values_.data(); }
  float atZero() const { return zero_; }
  // The exact value, without the table.
  float exactly(float x) const;

 private:
  std::function<double(double)> curve_;
  std::vector<float> values_;
  float zero_;
};

}  // namespace vantorel::cli
