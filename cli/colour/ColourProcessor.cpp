#include "cli/colour/ColourProcessor.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>

#include "cli/base/Rows.h"
#include "cli/colour/IccProfile.h"
#include "cli/colour/OcioConfig.h"
#include "cli/colour/RgbKernels.h"
#include "host/Alpha.h"

namespace vantorel::cli {

namespace {

const RgbKernels& activeKernels() {
  static const RgbKernels& kernels = rgbKernels(activeInstructionSet());
  return kernels;
}

std::unique_ptr<const CurveTable> decodeTable(const Transfer& transfer) {
  if (transfer.isLinear()) {
    return nullptr;
  }
  return std::make_unique<const CurveTable>([=](double code) { return transfer.decode(code); });
}

std::unique_ptr<const CurveTable> encodeTable(const Transfer& transfer) {
  if (transfer.isLinear()) {
    return nullptr;
  }
  return std::make_unique<const CurveTable>([=](double light) { return transfer.encode(light); });
}

// Curve, matrix, curve.
class RgbConversion : public RowConversion {
 public:
  RgbConversion(const RgbModel& from, const RgbModel& to)
      : decode_(decodeTable(from.transfer)), encode_(encodeTable(to.transfer)) {
    steps_.decode = curveSteps(decode_.get());
    steps_.encode = curveSteps(encode_.get());
    steps_.has_matrix = !areClose(from.primaries, to.primaries);
    const Matrix3 matrix = steps_.has_matrix ? inverse(toXyz(to.primaries)) * toXyz(from.primaries) : kIdentity3;
    for (std::size_t row = 0; row < 3; ++row) {
      for (std::size_t column = 0; column < 3; ++column) {
        steps_.columns[column][row] = static_cast<float>(matrix[row][column]);
      }
    }
  }

  void apply(float* row, int width) const override { activeKernels().convert(steps_, row, width); }

 private:
  std::unique_ptr<const CurveTable> decode_;
  std::unique_ptr<const CurveTable> encode_;
  RgbSteps steps_;
};

// Converts from the space to an RgbModel; adds a step if the space is not one itself.
RgbModel enter(const ColourSpace& from, ColourProcessor& steps, const std::string& input) {
  if (from.rgb) {
    return *from.rgb;
  }
  if (from.icc) {
    steps.push_back(from.icc->toLinear(input));
    return *linearRec709().rgb;
  }
  const OcioConfig::Hub hub = from.config->hub();
  if (hub.name != from.name) {
    steps.push_back(from.config->conversion(from.name, hub.name));
  }
  return hub.model;
}

// The RgbModel from which `step` converts to the space; no step if the space is one itself.
RgbModel leave(const ColourSpace& to, std::unique_ptr<const RowConversion>& step, const std::string& input) {
  if (to.rgb) {
    return *to.rgb;
  }
  if (to.icc) {
    step = to.icc->fromLinear(input);
    return *linearRec709().rgb;
  }
  const OcioConfig::Hub hub = to.config->hub();
  if (hub.name != to.name) {
    step = to.config->conversion(hub.name, to.name);
  }
  return hub.model;
}

void convertRow(float* row, int width, const ColourProcessor& processor) {
  const RgbKernels& kernels = activeKernels();
  const bool is_opaque = kernels.is_opaque(row, width);
  if (!is_opaque) {
    kernels.unpremultiply(row, width);
  }
  for (const auto& step : processor) {
    step->apply(row, width);
  }
  if (!is_opaque) {
    kernels.repremultiply(row, width);
  }
}

template <typename Channel>
void convertIntegerRow(Channel* row, int width, const ColourProcessor& processor) {
  constexpr float kMax = static_cast<float>(host::kOpaque<Channel>);
  std::vector<float> floats(4 * static_cast<std::size_t>(width));
  std::transform(row, row + floats.size(), floats.begin(),
                 [](Channel value) { return static_cast<float>(value) / kMax; });
  convertRow(floats.data(), width, processor);
  std::transform(floats.begin(), floats.end(), row,
                 [](float value) { return static_cast<Channel>(std::lround(std::clamp(value, 0.0f, 1.0f) * kMax)); });
}

}  // namespace

ColourProcessor makeProcessor(const ColourSpace& from, const ColourSpace& to, const std::string& input) {
  ColourProcessor steps;
  if (isSame(from, to)) {
    return steps;
  }
  if (from.config && from.config == to.config) {
    steps.push_back(from.config->conversion(from.name, to.name));
    return steps;
  }
  const RgbModel entered = enter(from, steps, input);
  std::unique_ptr<const RowConversion> last;
  const RgbModel left = leave(to, last, input);
  if (!isSame({"", entered, nullptr, nullptr}, {"", left, nullptr, nullptr})) {
    steps.push_back(std::make_unique<RgbConversion>(entered, left));
  }
  if (last) {
    steps.push_back(std::move(last));
  }
  return steps;
}

std::optional<RgbModel> modelOf(const ColourSpace& space) {
  if (space.rgb || !isLinear(space)) {
    return space.rgb;
  }
  ColourProcessor steps;
  const Matrix3 to_xyz = toXyz(enter(space, steps, space.name).primaries);
  std::array<float, 12> pixels{1, 0, 0, 1, 0, 1, 0, 1, 0, 0, 1, 1};
  for (const auto& step : steps) {
    step->apply(pixels.data(), 3);
  }
  std::array<Chromaticity, 3> at;
  for (std::size_t i = 0; i < 3; ++i) {
    const Triple xyz = to_xyz * Triple{pixels[4 * i], pixels[4 * i + 1], pixels[4 * i + 2]};
    const double sum = xyz[0] + xyz[1] + xyz[2];
    at[i] = {xyz[0] / sum, xyz[1] / sum};
  }
  const Primaries primaries{at[0], at[1], at[2], kD65};
  return isUsable(primaries) ? std::optional(RgbModel{primaries, Transfer{}}) : std::nullopt;
}

void convert(const host::ImageView& picture, const ColourProcessor& processor) {
  if (processor.empty()) {
    return;
  }
  forRows(picture.size.height, [&](int y) {
    switch (picture.depth) {
      case host::Depth::Bits8:
        return convertIntegerRow(reinterpret_cast<std::uint8_t*>(picture.row(y)), picture.size.width, processor);
      case host::Depth::Bits16:
        return convertIntegerRow(reinterpret_cast<std::uint16_t*>(picture.row(y)), picture.size.width, processor);
      case host::Depth::Float:
        return convertRow(reinterpret_cast<float*>(picture.row(y)), picture.size.width, processor);
    }
  });
}

void ConversionTo::operator()(const host::ImageView& picture, const ColourSpace& from, const std::string& input) {
  if (!isSame(from, to_)) {
    convert(picture, processorFrom(from, input));
  }
}

const ColourProcessor& ConversionTo::processorFrom(const ColourSpace& from, const std::string& input) {
  const std::scoped_lock lock(mutex_);
  const auto known = std::ranges::find_if(processors_, [&](const auto& entry) { return isSame(entry.first, from); });
  if (known != processors_.end()) {
    return *known->second;
  }
  processors_.emplace_back(from, std::make_unique<const ColourProcessor>(makeProcessor(from, to_, input)));
  return *processors_.back().second;
}

}  // namespace vantorel::cli
