#include "host/Instance.h"

#include <cmath>
#include <cstring>
#include <exception>
#include <limits>
#include <utility>

#include "host/BlankFrame.h"
#include "host/Downsample.h"
#include "host/Errors.h"
#include "host/FrameProtocols.h"
#include "host/FrameRequest.h"
#include "host/FrameState.h"
#include "host/ModuleState.h"
#include "host/ParameterServices.h"
#include "host/RowGuard.h"

namespace vantorel::host {

struct Instance::State {
  std::shared_ptr<const Module> module;
  AnimatedCorners corners;
  FrameState frame;
  Image scaled_layer;    // the layer at the last frame's resolution
  Image another_corner;  // a larger canvas, for the rare frame that its own gives no map for
};

namespace {

constexpr double kLowestCoordinate = -32768.0;
constexpr double kCoordinateEnd = 32768.0;
constexpr int kLargestBilinearLayer = 32767;

std::string keyText(const AnimatedPoint::Key& key) {
  std::string text = "(";
  text.append(std::to_string(key.value.x)).append(", ").append(std::to_string(key.value.y)).append(") at ");
  return text.append(std::to_string(key.seconds)).append(" s");
}

Result<void> checkCorner(const AnimatedPoint& point, const char* name) {
  const auto fits = [](double value) { return value >= kLowestCoordinate && value < kCoordinateEnd; };
  for (const AnimatedPoint::Key& key : point.keys()) {
    if (!std::isfinite(key.seconds)) {
      return invalidArgument(name, "a key's time is not a finite number of seconds");
    }
    if (!fits(key.value.x) || !fits(key.value.y)) {
      return invalidArgument(
          name, keyText(key) + " is out of range; both coordinates must be numbers from -32768 to below 32768");
    }
  }
  return {};
}

// Forgets the worlds of a frame when it ends, however it ends.
class FrameEnd {
 public:
  explicit FrameEnd(FrameState& frame) : frame_(frame) {}
  ~FrameEnd() {
    frame_.worlds.clear();
    frame_.guard = nullptr;
    frame_.input = {};
    frame_.output = {};
  }
  FrameEnd(const FrameEnd&) = delete;
  FrameEnd& operator=(const FrameEnd&) = delete;

 private:
  FrameState& frame_;
};

void copyPixels(const ImageView& from, const ImageView& to) {
  const std::size_t row_bytes = static_cast<std::size_t>(to.size.width) * bytesPerPixel(to.depth);
  for (int y = 0; y < to.size.height; ++y) {
    std::memcpy(to.row(y), from.row(y), row_bytes);
  }
}

// The module reads the layer and is trusted not to write it; the interface has no constant worlds.
ImageView readOnly(const ConstImageView& view) {
  return {const_cast<std::byte*>(view.data), view.row_bytes, view.size, view.depth};
}

// The layer at the frame's resolution: itself, or scaled into `scaled`.
Result<ImageView> layerAtResolution(const ConstImageView& layer, int downsample, Image* scaled) {
  if (downsample == 1) {
    return readOnly(layer);
  }
  const Size size = downsampled(layer.size, downsample);
  if (scaled->empty() || scaled->size() != size || scaled->depth() != layer.depth) {
    *scaled = Image();
    Result<Image> created = Image::create(size, layer.depth);
    if (!created) {
      return tl::unexpected(std::move(created).error());
    }
    *scaled = std::move(*created);
  }
  downsampleLayer(layer, downsample, scaled->view());
  return scaled->view();
}

void beginFrame(FrameState& frame, const AnimatedCorners& corners, const FrameOptions& options, bool checking) {
  frame.corners = &corners;
  frame.downsample = options.downsample;
  frame.iterated = false;
  frame.render_seconds = 0.0;
  frame.rows.begin(checking ? 1 : options.threads, options.progress, options.stop);
}

// The bilinear renderer holds the layer's edges, and the corners on the canvas, in 16.16 too.
Result<void> checkBilinearReach(const FrameState& frame, const Rect& canvas) {
  if (frame.input.width > kLargestBilinearLayer || frame.input.height > kLargestBilinearLayer) {
    return invalidArgument("layer",
                           "its size is more than the 32767 pixels a side that can be drawn onto a "
                           "quadrilateral that is not convex; render it at a lower resolution");
  }
  const auto fits = [](std::int32_t fixed, int origin) {
    const std::int64_t shifted = fixed - std::int64_t{origin} * 65536;
    return shifted >= std::numeric_limits<std::int32_t>::min() && shifted <= std::numeric_limits<std::int32_t>::max();
  };
  for (std::size_t i = 1; i < frame.params.size(); ++i) {
    const PF_PointValue& point = frame.params[i].value.point;
    if (!fits(point.point_x, canvas.left) || !fits(point.point_y, canvas.top)) {
      return invalidArgument("canvas",
                             "a corner lies 32768 pixels or more from its upper left corner, farther than a "
                             "quadrilateral that is not convex can be drawn; use a nearer canvas");
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
  return checkCorner(corners.upper_left, "upper left corner")
      .and_then([&] { return checkCorner(corners.upper_right, "upper right corner"); })
      .and_then([&] { return checkCorner(corners.lower_left, "lower left corner"); })
      .and_then([&] { return checkCorner(corners.lower_right, "lower right corner"); })
      .map([&] { state_->corners = corners; });
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
  Result<void> valid = checkFrameRequest(*state_->module, layer, canvas, output, options);
  if (!valid) {
    return tl::unexpected(std::move(valid).error());
  }
  FrameState& frame = state_->frame;
  const FrameEnd end(frame);
  beginFrame(frame, state_->corners, options, state_->module->checking());
  Result<ImageView> input = layerAtResolution(layer, options.downsample, &state_->scaled_layer);
  if (!input) {
    return tl::unexpected(std::move(input).error());
  }
  frame.depth = layer.depth;
  frame.input = worldOf(*input);
  frame.output = worldOf(output);

  std::optional<RowGuard> guard;
  if (state_->module->checking()) {
    Result<RowGuard> created = RowGuard::create(output.size, output.depth);
    if (!created) {
      return tl::unexpected(std::move(created).error());
    }
    guard.emplace(std::move(*created));
    frame.guard = &*guard;
    frame.output = worldOf(guard->world());
  }
  fillParameters(&frame, options.time);

  const Rect scaled_canvas = canvasAtResolution(canvas, output.size, options.downsample);
  const FrameJob job{state_->module->state(), frame, layer.size, options};
  Result<Rect> drawn = drawFrame(job, scaled_canvas);
  if (drawn && frame.iterated && !guard && isUnexpectedlyBlank(frame, scaled_canvas)) {
    drawn = drawFromAnotherCorner(job, scaled_canvas, &state_->another_corner).map([&] { return *drawn; });
  }
  if (drawn) {
    frame.rows.report(1.0);
  }
  if (frame.rows.progressFailure()) {
    std::rethrow_exception(frame.rows.progressFailure());
  }
  if (!drawn) {
    return tl::unexpected(std::move(drawn).error());
  }
  if (options.stop.stop_requested()) {
    return tl::unexpected(Error{ErrorKind::Interrupted, 0, "frame", "the frame was stopped before it was done"});
  }
  if (guard) {
    copyPixels(guard->world(), output);
  }
  FrameResult result;
  result.path = frame.iterated || drawn->empty() ? RenderPath::Perspective : RenderPath::Bilinear;
  result.drawn = *drawn;
  result.render_seconds = frame.render_seconds;
  if (result.path == RenderPath::Bilinear) {
    return checkBilinearReach(frame, scaled_canvas).map([&] { return result; });
  }
  return result;
}

Result<Rect> Instance::boundingBox(Size layer_size, const FrameOptions& options) {
  Result<void> valid = checkBoxRequest(*state_->module, layer_size, options);
  if (!valid) {
    return tl::unexpected(std::move(valid).error());
  }
  constexpr int kFar = 1 << 30;
  FrameOptions full = options;
  full.downsample = 1;
  FrameState& frame = state_->frame;
  const FrameEnd end(frame);
  beginFrame(frame, state_->corners, full, state_->module->checking());
  frame.input.width = layer_size.width;
  frame.input.height = layer_size.height;
  fillParameters(&frame, full.time);
  return askFrameSetup({state_->module->state(), frame, layer_size, full}, {-kFar, -kFar, kFar, kFar});
}

}  // namespace vantorel::host
