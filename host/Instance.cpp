#include "host/Instance.h"

#include <cmath>
#include <string>
#include <utility>

#include "host/frames/FrameRender.h"
#include "host/frames/FrameRequest.h"
#include "host/module/ModuleState.h"

namespace vantorel::host {

struct Instance::State {
  std::shared_ptr<const Module> module;
  AnimatedCorners corners;
  FrameState frame;
  TileStore tiles;
};

namespace {

std::string keyText(const AnimatedPoint::Key& key) {
  std::string text = "(";
  text.append(std::to_string(key.value.x)).append(", ").append(std::to_string(key.value.y)).append(") at ");
  return text.append(std::to_string(key.seconds)).append(" s");
}

Result<void> checkCorner(const AnimatedPoint& point, std::string_view name) {
  const auto refused = [&](const std::string& fault) { return invalidArgument(std::string(name) + " corner", fault); };
  for (const AnimatedPoint::Key& key : point.keys()) {
    if (!std::isfinite(key.seconds)) {
      return refused("a key's time is not a finite number of seconds");
    }
    if (!isCoordinate(key.value.x) || !isCoordinate(key.value.y)) {
      return refused(keyText(key) + " is out of range; both coordinates must be numbers from -32768 to below 32768");
    }
  }
  return {};
}

}  // namespace

Instance::Instance(std::shared_ptr<const Module> module) : state_(std::make_unique<State>()) {
  state_->module = std::move(module);
}

Instance::~Instance() = default;
Instance::Instance(Instance&&) noexcept = default;
Instance& Instance::operator=(Instance&&) noexcept = default;

Result<void> Instance::setCorners(const AnimatedCorners& corners) {
  for (std::size_t i = 0; i < kCornerCount; ++i) {
    if (Result<void> valid = checkCorner(corners[i], kCornerNames[i]); !valid) {
      return valid;
    }
  }
  state_->corners = corners;
  return {};
}

Result<void> Instance::setCorners(const Corners& corners) {
  return setCorners(AnimatedCorners{AnimatedPoint(corners.upper_left), AnimatedPoint(corners.upper_right),
                                    AnimatedPoint(corners.lower_left), AnimatedPoint(corners.lower_right)});
}

Corners Instance::defaultCorners(Size layer_size) const {
  const auto point = [&](std::size_t index) -> Point {
    const std::vector<ParameterInfo>& parameters = state_->module->info().parameters;
    if (index >= parameters.size()) {
      return {};
    }
    const Point& percent = parameters[index].default_percent;
    return {percent.x * layer_size.width / 100.0, percent.y * layer_size.height / 100.0};
  };
  return {point(0), point(1), point(2), point(3)};
}

Result<FrameResult> Instance::render(const ConstImageView& layer, const Rect& canvas, const ImageView& output,
                                     const FrameOptions& options) {
  if (Result<void> valid = checkFrameRequest(*state_->module, layer, canvas, output, options); !valid) {
    return tl::unexpected(std::move(valid).error());
  }
  const Rect scaled_canvas = canvasAtResolution(canvas, output.size, options.downsample);
  return FrameRender(*state_->module->state_, state_->frame, state_->tiles, state_->corners, layer.size, options)
      .render(layer, scaled_canvas, output);
}

Result<Rect> Instance::boundingBox(Size layer_size, const FrameOptions& options) {
  if (Result<void> valid = checkBoxRequest(*state_->module, layer_size, options); !valid) {
    return tl::unexpected(std::move(valid).error());
  }
  FrameOptions full = options;
  full.downsample = 1;
  return FrameRender(*state_->module->state_, state_->frame, state_->tiles, state_->corners, layer_size, full)
      .boundingBox();
}

}  // namespace vantorel::host
