#include "host/frames/FrameRequest.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>

#include "host/Error.h"
#include "host/frames/FrameState.h"
#include "support/PF_HostRecords.h"

namespace vantorel::host {

namespace {

constexpr int kMaxCanvasOffset = 1 << 29;
constexpr int kMaxLayerSide = 32768;  // the range of 16.16 positions

template <typename Byte>
std::int64_t rowPixelBytes(const BasicImageView<Byte>& view) {
  return std::int64_t{view.size.width} * static_cast<std::int64_t>(bytesPerPixel(view.depth));
}

template <typename Byte>
Result<void> checkView(const BasicImageView<Byte>& view, const char* name) {
  if (view.size.width <= 0 || view.size.height <= 0) {
    return invalidArgument(name, "its size " + sizeText(view.size) + " has no pixels; both sides must be 1 or more");
  }
  if (view.data == nullptr) {
    return invalidArgument(name, "its data is null; give the address of its first pixel");
  }
  if (view.depth != Depth::Bits8 && view.depth != Depth::Bits16 && view.depth != Depth::Float) {
    return invalidArgument(name, "its depth must be 8, 16 or 32 bits per channel");
  }
  const auto channel_bytes = static_cast<std::ptrdiff_t>(bytesPerPixel(view.depth) / 4);
  const std::int64_t pixel_bytes = rowPixelBytes(view);
  const std::int64_t stride = view.row_bytes;  // may be the smallest integer, whose magnitude must not be taken
  if (stride < -std::numeric_limits<std::int32_t>::max() || stride > std::numeric_limits<std::int32_t>::max() ||
      std::abs(stride) < pixel_bytes) {
    return invalidArgument(
        name, "its row stride of " + std::to_string(stride) + " bytes must be from " + std::to_string(pixel_bytes) +
                  " (a row's pixels) to 2147483647, or the same below zero for rows stored bottom up");
  }
  if (view.row_bytes % channel_bytes != 0 ||
      reinterpret_cast<std::uintptr_t>(view.data) % static_cast<std::uintptr_t>(channel_bytes) != 0) {
    return invalidArgument(
        name, "its data and row stride must be multiples of the channel's " + std::to_string(channel_bytes) + " bytes");
  }
  return {};
}

// The range of addresses that a view occupies; `end` is exclusive.
struct MemoryRange {
  std::uintptr_t begin;
  std::uintptr_t end;
};

template <typename Byte>
MemoryRange memoryOf(const BasicImageView<Byte>& view) {
  const auto first = reinterpret_cast<std::uintptr_t>(view.data);
  const auto last = first + static_cast<std::uintptr_t>(std::int64_t{view.size.height - 1} * view.row_bytes);
  const auto row_bytes = static_cast<std::uintptr_t>(rowPixelBytes(view));
  return {view.row_bytes < 0 ? last : first, (view.row_bytes < 0 ? first : last) + row_bytes};
}

bool overlap(const MemoryRange& a, const MemoryRange& b) {
  return a.begin < b.end && b.begin < a.end;
}

Result<void> checkCanvas(const Rect& canvas, const ImageView& output, int downsample) {
  const auto within = [](int value) { return value >= -kMaxCanvasOffset && value <= kMaxCanvasOffset; };
  if (!within(canvas.left) || !within(canvas.top) || !within(canvas.right) || !within(canvas.bottom)) {
    return invalidArgument("canvas", "its edges must lie within 536870912 pixels of the layer's corner");
  }
  if (canvas.empty()) {
    return invalidArgument("canvas", "its size " + sizeText({canvas.width(), canvas.height()}) +
                                         " has no pixels; both sides must be 1 or more");
  }
  const Size wanted = downsampled({canvas.width(), canvas.height()}, downsample);
  if (output.size != wanted) {
    return invalidArgument("output", "its size is " + sizeText(output.size) + ", but the canvas at 1/" +
                                         std::to_string(downsample) + " has " + sizeText(wanted));
  }
  return {};
}

Result<void> checkLayerReach(Size layer_size, int downsample) {
  const Size size = downsampled(layer_size, downsample);
  if (size.width > kMaxLayerSide || size.height > kMaxLayerSide) {
    return invalidArgument("layer", "its size " + sizeText(size) +
                                        " is more than the 32768 pixels a side that the effect can reach; render it "
                                        "at a lower resolution");
  }
  return {};
}

Result<void> checkShutter(const FrameOptions& options) {
  constexpr double kMostDegrees = 720.0;
  constexpr int kMostMoments = 1024;
  const Shutter& shutter = options.shutter;
  const double offset = shutter.offset.value_or(0.0);
  if (!(shutter.degrees >= 0.0 && shutter.degrees <= kMostDegrees)) {
    return invalidArgument("shutter", std::to_string(shutter.degrees) + " degrees is out of range; give 0 to 720");
  }
  if (!(offset >= -kMostDegrees && offset <= kMostDegrees)) {
    return invalidArgument("shutter offset", std::to_string(offset) + " degrees is out of range; give -720 to 720");
  }
  if (shutter.max_samples < 1 || shutter.max_samples > kMostMoments) {
    return invalidArgument("shutter samples", std::to_string(shutter.max_samples) + " is out of range; give 1 to 1024");
  }
  if (shutter.degrees > 0.0 && options.placement == Placement::Centres) {
    return invalidArgument("shutter", "motion blur requires the outline placement; use that placement");
  }
  return {};
}

Result<void> checkOptions(const FrameOptions& options) {
  if (options.downsample < 1) {
    return invalidArgument("downsample",
                           std::to_string(options.downsample) + " is not a divisor of the resolution; give 1 or more");
  }
  constexpr std::array kSampleCounts{0, 1, 2, 4, 8};
  if (std::ranges::find(kSampleCounts, options.samples) == kSampleCounts.end()) {
    return invalidArgument("samples", std::to_string(options.samples) +
                                          " is not a number of samples; give 1, 2, 4, 8, or 0 for automatic");
  }
  if (options.placement == Placement::Centres && options.samples > 1) {
    return invalidArgument("samples", "there can only be one with the centres placement; use 1");
  }
  if (options.placement == Placement::Centres && options.edges == Edges::Crisp) {
    return invalidArgument("edges", "they can only be soft with the centres placement; use soft edges");
  }
  if (options.placement == Placement::Centres && options.canvas_independent) {
    return invalidArgument("canvas independence", "it requires the outline placement; use that placement");
  }
  if (options.time.scale == 0) {
    return invalidArgument("time scale", "it must be 1 or more units per second");
  }
  return checkShutter(options);
}

Result<void> checkParameters(const Module& module) {
  const std::vector<ParameterInfo>& parameters = module.info().parameters;
  const bool four_points =
      parameters.size() == kCornerCount && std::ranges::all_of(parameters, [](const ParameterInfo& parameter) {
        return parameter.type == PARAM_TYPE_POINT;
      });
  if (!four_points) {
    return failure(ErrorKind::ModuleUnusable, module.info().path,
                   "does not declare exactly four points; use a four-point effect");
  }
  return {};
}

int floorDivided(int value, int n) {
  return value >= 0 ? value / n : -((-value - 1) / n) - 1;
}

}  // namespace

Result<void> checkFrameRequest(const Module& module, const ConstImageView& layer, const Rect& canvas,
                               const ImageView& output, const FrameOptions& options) {
  return checkParameters(module)
      .and_then([&] { return checkOptions(options); })
      .and_then([&] { return checkView(layer, "layer"); })
      .and_then([&] { return checkLayerReach(layer.size, options.downsample); })
      .and_then([&] { return checkView(output, "output"); })
      .and_then([&] { return checkCanvas(canvas, output, options.downsample); })
      .and_then([&]() -> Result<void> {
        if (layer.depth != output.depth) {
          return invalidArgument("output", "its depth is not the layer's; give it the same depth");
        }
        if (overlap(memoryOf(layer), memoryOf(output))) {
          return invalidArgument("output", "its pixels overlap the layer's; give it memory of its own");
        }
        return {};
      });
}

Result<void> checkBoxRequest(const Module& module, Size layer_size, const FrameOptions& options) {
  if (layer_size.width <= 0 || layer_size.height <= 0) {
    return invalidArgument("layer",
                           "its size " + sizeText(layer_size) + " has no pixels; both sides must be 1 or more");
  }
  return checkParameters(module).and_then([&] { return checkOptions(options); });
}

Rect canvasAtResolution(const Rect& canvas, Size output_size, int n) {
  const int left = floorDivided(canvas.left, n);
  const int top = floorDivided(canvas.top, n);
  return {left, top, left + output_size.width, top + output_size.height};
}

Rect reducedCanvas(const Rect& canvas, int n) {
  return {floorDivided(canvas.left, n), floorDivided(canvas.top, n), floorDivided(canvas.right - 1, n) + 1 + (n > 1),
          floorDivided(canvas.bottom - 1, n) + 1 + (n > 1)};
}

}  // namespace vantorel::host
