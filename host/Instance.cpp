#include "host/Instance.h"

#include <cmath>
#include <exception>
#include <optional>
#include <string>
#include <utility>

#include "host/checking/OutOfMemory.h"
#include "host/frames/FrameRender.h"
#include "host/frames/FrameRequest.h"
#include "host/module/ModuleState.h"

namespace vantorel::host {

struct Instance::State {
  AnimatedCorners corners;
  std::optional<AnimatedCorners> source;
  FrameState frame;
  TileStore tiles;

  const AnimatedCorners* sourceOrNull() const { return source ? &*source : nullptr; }
};

namespace {

std::string keyText(const AnimatedPoint::Key& key) {
  std::string text = "(";
  text.append(std::to_string(key.value.x)).append(", ").append(std::to_string(key.value.y)).append(") at ");
  return text.append(std::to_string(key.seconds)).append(" s");
}

Result<void> checkKey(const AnimatedPoint::Key& key, const std::string& name) {
  const auto refused = [&](const std::string& fault) { return invalidArgument(name + " corner", fault); };
  if (!std::isfinite(key.seconds)) {
    return refused("a key's time is not a finite number of seconds");
  }
  if (!isCoordinate(key.value.x) || !isCoordinate(key.value.y)) {
    return refused(keyText(key) + " is out of range; both coordinates must be numbers from -32768 to below 32768");
  }
  return {};
}

Result<void> checkCorners(const AnimatedCorners& corners, const std::string& prefix) {
  for (std::size_t i = 0; i < kCornerCount; ++i) {
    for (const AnimatedPoint::Key& key : corners[i].keys()) {
      if (Result<void> valid = checkKey(key, prefix + std::string(kCornerNames[i])); !valid) {
        return valid;
      }
    }
  }
  return {};
}

// For corners that change with every frame: allocates nothing unless there is an error.
Result<void> checkCorners(const Corners& corners) {
  for (std::size_t i = 0; i < kCornerCount; ++i) {
    if (!isCoordinate(corners[i].x) || !isCoordinate(corners[i].y)) {
      return checkKey({0.0, corners[i]}, std::string(kCornerNames[i]));
    }
  }
  return {};
}

AnimatedCorners constant(const Corners& corners) {
  return {AnimatedPoint(corners.upper_left), AnimatedPoint(corners.upper_right), AnimatedPoint(corners.lower_left),
          AnimatedPoint(corners.lower_right)};
}

}  // namespace

Instance::Instance(std::shared_ptr<const Module> module) noexcept : module_(std::move(module)) {}

Instance::~Instance() = default;
Instance::Instance(Instance&&) noexcept = default;
Instance& Instance::operator=(Instance&&) noexcept = default;

Result<void> Instance::makeReady() {
  if (!module_) {
    return invalidArgument("module", "there is none; load one first");
  }
  if (!state_) {
    state_ = std::make_unique<State>();
  }
  return {};
}

Result<void> Instance::setCorners(const AnimatedCorners& corners) {
  return withMemoryErrors("corners", [&] {
    return makeReady().and_then([&] { return checkCorners(corners, ""); }).map([&] {
      state_->corners = AnimatedCorners(corners);
    });
  });
}

Result<void> Instance::setSource(const AnimatedCorners& source) {
  return withMemoryErrors("source", [&] {
    return makeReady().and_then([&] { return checkCorners(source, "source's "); }).map([&] {
      state_->source = source;
    });
  });
}

Result<void> Instance::setSource(const Corners& source) {
  return withMemoryErrors("source", [&] { return setSource(constant(source)); });
}

void Instance::clearSource() {
  if (state_) {
    state_->source.reset();
  }
}

Result<void> Instance::setCorners(const Corners& corners) {
  return withMemoryErrors("corners", [&] {
    return makeReady().and_then([&] { return checkCorners(corners); }).map([&] {
      state_->corners.setConstant(corners);
    });
  });
}

Corners Instance::defaultCorners(Size layer_size) const noexcept {
  const auto point = [&](std::size_t index) -> Point {
    if (!module_ || index >= module_->info().parameters.size()) {
      return {};
    }
    const Point& percent = module_->info().parameters[index].default_percent;
    return {percent.x * layer_size.width / 100.0, percent.y * layer_size.height / 100.0};
  };
  return {point(0), point(1), point(2), point(3)};
}

Result<FrameResult> Instance::render(const ConstImageView& layer, const Rect& canvas, const ImageView& output,
                                     const FrameOptions& options) {
  std::exception_ptr thrown;
  Result<FrameResult> result = withMemoryErrors("frame", [&] {
    return makeReady()
        .and_then([&] { return checkFrameRequest(*module_, layer, canvas, output, options); })
        .and_then([&]() -> Result<FrameResult> {
          const Rect scaled_canvas = canvasAtResolution(canvas, output.size, options.downsample);
          Result<FrameResult> drawn = FrameRender(*module_->state_, state_->frame, state_->tiles, state_->corners,
                                                  state_->sourceOrNull(), layer.size, options)
                                          .render(layer, scaled_canvas, output);
          thrown = state_->frame.rows.progressFailure();
          return drawn;
        });
  });
  if (thrown) {
    std::rethrow_exception(thrown);
  }
  return result;
}

Result<Rect> Instance::boundingBox(Size layer_size, const FrameOptions& options) {
  return withMemoryErrors("bounding box", [&] {
    return makeReady().and_then([&] { return checkBoxRequest(*module_, layer_size, options); }).and_then([&] {
      FrameOptions full = options;
      full.downsample = 1;
      return FrameRender(*module_->state_, state_->frame, state_->tiles, state_->corners, state_->sourceOrNull(),
                         layer_size, full)
          .boundingBox();
    });
  });
}

Result<Rect> Instance::neededPart(Size layer_size, const Rect& canvas, const FrameOptions& options) {
  return withMemoryErrors("layer", [&] {
    return makeReady().and_then([&] { return checkBoxRequest(*module_, layer_size, options); }).and_then([&] {
      FrameRender frame(*module_->state_, state_->frame, state_->tiles, state_->corners, state_->sourceOrNull(),
                        layer_size, options);
      return canvas.empty() ? Result<Rect>(Rect{}) : frame.neededPart(reducedCanvas(canvas, options.downsample));
    });
  });
}

}  // namespace vantorel::host
