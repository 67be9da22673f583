// Fuzzes the embedded host's own interface: pictures, canvases, corners, sources and options of any kind. A request is
// answered with pixels inside the output alone, or with an error that says what is wrong with which input.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "effect/EffectMain.h"
#include "fuzz/Input.h"
#include "host/Instance.h"

namespace {

using namespace vantorel::host;
using vantorel::fuzz::Input;
using vantorel::fuzz::require;

constexpr std::byte kGuard{0xDB};
constexpr std::size_t kGuardBytes = 64;  // before and behind the pixels
constexpr int kMaxSide = 32;
constexpr int kMaxFrames = 3;

const std::shared_ptr<const Module>& effect(bool checking) {
  const auto load = [](bool checked) {
    auto module = Module::fromEntry(&EffectMainExtra, "the effect", {.checking = checked});
    require(module.has_value(), "the effect is set up");
    return *module;
  };
  static const std::shared_ptr<const Module> kPlain = load(false);
  static const std::shared_ptr<const Module> kChecked = load(true);
  return checking ? kChecked : kPlain;
}

// Pixels among guard bytes. Where `input` says so, the view is not what the pixels were made for.
class Pixels {
 public:
  Pixels(Input& input, Size size, Depth depth)
      : row_bytes_(static_cast<std::size_t>(size.width) * bytesPerPixel(depth) +
                   static_cast<std::size_t>(input.inRange(0, 5)) * bytesPerPixel(depth) / 4),
        bytes_(2 * kGuardBytes + row_bytes_ * static_cast<std::size_t>(size.height), kGuard),
        view{bytes_.data() + kGuardBytes, static_cast<std::ptrdiff_t>(row_bytes_), size, depth} {
    if (input.inRange(0, 31) == 0) {
      view.row_bytes = input.number() % (view.row_bytes + 1);
      // Rows may be stored bottom up; the top one is then so far behind that all stay in the buffer.
      view.data -= view.row_bytes < 0 ? view.row_bytes * std::max(size.height - 1, 0) : 0;
    }
    if (input.inRange(0, 31) == 0 && view.row_bytes >= 0) {
      view.data = input.flag() ? nullptr : view.data + 1;
      view.size.height = view.size.height > 0 ? view.size.height - 1 : 0;
    }
  }

  // Whether all bytes but those of the view's pixels are as they were, its rows' padding included.
  bool guardsIntact() const {
    std::vector<std::byte> rest = bytes_;
    for (int y = 0; y < view.size.height && view.data != nullptr; ++y) {
      std::fill_n(rest.begin() + (view.row(y) - bytes_.data()), bytesPerPixel(view.depth) * view.size.width, kGuard);
    }
    return std::ranges::all_of(rest, [](std::byte byte) { return byte == kGuard; });
  }

 private:
  std::size_t row_bytes_;
  std::vector<std::byte> bytes_;

 public:
  ImageView view;
};

Corners someCorners(Input& input) {
  Corners corners;
  for (Point* point : {&corners.upper_left, &corners.upper_right, &corners.lower_left, &corners.lower_right}) {
    *point = {input.real(), input.real()};
    if (input.flag()) {
      *point = {input.inRange(-8, 40) / 1.0, input.inRange(-8, 40) / 1.0};
    }
  }
  return corners;
}

AnimatedCorners moving(Input& input) {
  AnimatedCorners animated;
  for (AnimatedPoint* point :
       {&animated.upper_left, &animated.upper_right, &animated.lower_left, &animated.lower_right}) {
    std::vector<AnimatedPoint::Key> keys;
    for (int n = input.inRange(0, 3); n > 0; --n) {
      keys.push_back({input.real(), {input.real(), input.real()}});
    }
    *point = AnimatedPoint(std::move(keys), static_cast<Interpolation>(input.inRange(0, 2)));
  }
  return animated;
}

FrameOptions someOptions(Input& input) {
  FrameOptions options;
  options.quality = static_cast<Quality>(input.inRange(0, 2));
  options.placement = static_cast<Placement>(input.inRange(0, 1));
  options.protocol = static_cast<Protocol>(input.inRange(0, 1));
  options.threads = static_cast<unsigned>(input.inRange(0, 2));
  options.downsample = input.inRange(0, 3) != 0 ? 1 : input.number();
  if (input.inRange(0, 3) == 0) {
    options.edges = static_cast<Edges>(input.inRange(0, 1));
    options.samples = input.inRange(0, 9);
    options.shutter = {input.real(), input.flag() ? std::optional(input.real()) : std::nullopt, input.inRange(-1, 5)};
    options.time = {input.number(), input.number(), static_cast<std::uint32_t>(input.number())};
  }
  return options;
}

template <typename T>
void requireError(const Result<T>& result) {
  require(result || (!result.error().message.empty() && result.error().kind != ErrorKind::Misuse),
          "an error says what is wrong, and the effect misuses nothing");
}

void renderOne(Input& input, Instance& instance) {
  const Depth depth = static_cast<Depth>(8 << input.inRange(0, 2));
  Pixels layer(input, {input.inRange(0, kMaxSide), input.inRange(0, kMaxSide)}, depth);
  FrameOptions options = someOptions(input);
  Rect canvas{input.number(), input.number(), 0, 0};
  const Size size{input.inRange(0, kMaxSide), input.inRange(0, kMaxSide)};
  const auto edge = [](int begin, int length) {
    return static_cast<int>(std::int64_t{begin} + length > INT32_MAX ? begin : begin + length);
  };
  canvas.right = edge(canvas.left, size.width);
  canvas.bottom = edge(canvas.top, size.height);
  const bool has_size = options.downsample >= 1 && size.width >= 1 && size.height >= 1;
  Pixels output(input, has_size ? downsampled(size, options.downsample) : size,
                input.inRange(0, 31) == 0 ? Depth::Bits8 : depth);
  requireError(instance.render(asConst(layer.view), canvas, output.view, options));
  require(layer.guardsIntact() && output.guardsIntact(), "pixels alone are written");
  requireError(instance.boundingBox(layer.view.size, options));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  Input input(bytes, size);
  Instance instance(effect(input.inRange(0, 7) == 0));
  for (int n = input.inRange(1, kMaxFrames); n > 0; --n) {
    requireError(input.inRange(0, 3) == 0 ? instance.setCorners(moving(input))
                                          : instance.setCorners(someCorners(input)));
    if (input.inRange(0, 7) == 0) {
      requireError(instance.setSource(someCorners(input)));
    }
    renderOne(input, instance);
  }
  return 0;
}
