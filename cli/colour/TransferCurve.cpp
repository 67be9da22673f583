#include "cli/colour/TransferCurve.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace vantorel::cli {

namespace {

// A power function with a linear toe: code = a * light^power - (a - 1) above `knee`, slope * light below it.
struct ToedPower {
  double a;
  double power;
  double slope;
  double knee;  // in light

  double encode(double light) const { return light < knee ? slope * light : a * std::pow(light, power) - (a - 1.0); }
  double decode(double code) const {
    return code < slope * knee ? code / slope : std::pow((code + (a - 1.0)) / a, 1.0 / power);
  }
};

constexpr ToedPower kSrgb{1.055, 1.0 / 2.4, 12.92, 0.0031308};
constexpr ToedPower kRec709{1.09929682680944, 0.45, 4.5, 0.018053968510807};
constexpr ToedPower kProPhoto{1.0, 1.0 / 1.8, 16.0, 0.001953125};

// ACEScct, as defined in S-2016-001.
constexpr double kCctKnee = 0.0078125;
constexpr double kCctSlope = 10.5402377416545;
constexpr double kCctOffset = 0.0729055341958355;

double encodeCct(double light) {
  return light <= kCctKnee ? kCctSlope * light + kCctOffset : (std::log2(light) + 9.72) / 17.52;
}
double decodeCct(double code) {
  constexpr double kCodeKnee = kCctSlope * kCctKnee + kCctOffset;
  return code <= kCodeKnee ? (code - kCctOffset) / kCctSlope : std::exp2(code * 17.52 - 9.72);
}

// Printing density of 10-bit scans: 95 is black, 685 is white, a code value is 0.002 of density at a gamma of 0.6.
constexpr double kDensityPerCode = 1023.0 * 0.002 / 0.6;
const double kCineonBlack = std::pow(10.0, (95.0 - 685.0) * 0.002 / 0.6);

double decodeCineon(double code) {
  return (std::pow(10.0, (code - 685.0 / 1023.0) * kDensityPerCode) - kCineonBlack) / (1.0 - kCineonBlack);
}
double encodeCineon(double light) {
  constexpr double kLeast = 1e-6;  // the smallest light that a logarithm is taken of
  const double exposure = std::max(kLeast, light * (1.0 - kCineonBlack) + kCineonBlack);
  return 685.0 / 1023.0 + std::log10(exposure) / kDensityPerCode;
}

template <typename Curve>
double mirrored(double x, const Curve& curve) {
  return x < 0.0 ? -curve(-x) : curve(x);
}

const ToedPower& toedPower(TransferKind kind) {
  return kind == TransferKind::Srgb ? kSrgb : kind == TransferKind::Rec709 ? kRec709 : kProPhoto;
}

}  // namespace

double Transfer::decode(double code) const {
  switch (kind) {
    case TransferKind::Linear:
      return code;
    case TransferKind::Gamma:
      return mirrored(code, [this](double x) { return std::pow(x, gamma); });
    case TransferKind::AcesCct:
      return decodeCct(code);
    case TransferKind::Cineon:
      return decodeCineon(code);
    default:
      return mirrored(code, [this](double x) { return toedPower(kind).decode(x); });
  }
}

double Transfer::encode(double light) const {
  switch (kind) {
    case TransferKind::Linear:
      return light;
    case TransferKind::Gamma:
      return mirrored(light, [this](double x) { return std::pow(x, 1.0 / gamma); });
    case TransferKind::AcesCct:
      return encodeCct(light);
    case TransferKind::Cineon:
      return encodeCineon(light);
    default:
      return mirrored(light, [this](double x) { return toedPower(kind).encode(x); });
  }
}

CurveTable::CurveTable(std::function<double(double)> curve)
    : curve_(std::move(curve)), zero_(static_cast<float>(curve_(0.0))) {
  values_.reserve(2 * (std::size_t{kSteps} + 1));
  for (const double sign : {1.0, -1.0}) {
    for (std::uint32_t i = 0; i <= kSteps; ++i) {
      values_.push_back(
          static_cast<float>(curve_(sign * double{std::bit_cast<float>(kLowest + (i << kFractionBits))})));
    }
  }
}

float CurveTable::exactly(float x) const {
  return static_cast<float>(curve_(double{x}));
}

}  // namespace vantorel::cli
