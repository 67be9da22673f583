// How code values stand for light.
#pragma once

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
  float operator()(float x) const;

 private:
  float tabulated(float magnitude, const std::vector<float>& side) const;

  std::function<double(double)> curve_;
  std::vector<float> positive_;
  std::vector<float> negative_;
  float zero_;
};

}  // namespace vantorel::cli
