#include "tests/host/HostTesting.h"

#include <cmath>
#include <cstring>
#include <random>

namespace vantorel::host {
inline namespace testing {

Corners rectangle(double left, double top, double right, double bottom) {
  return {{left, top}, {right, top}, {left, bottom}, {right, bottom}};
}

AnimatedCorners moving(const Corners& from, const Corners& to, double begin, double end) {
  const auto point = [&](std::size_t i) {
    return AnimatedPoint({{begin, from[i]}, {end, to[i]}}, Interpolation::Linear);
  };
  return {point(0), point(1), point(2), point(3)};
}

const std::shared_ptr<const Module>& effect() {
  static const std::shared_ptr<const Module> kModule = Module::load(kEffectPath).value();
  return kModule;
}

const std::shared_ptr<const Module>& checkedEffect() {
  static const std::shared_ptr<const Module> kModule = Module::load(kEffectPath, {.checking = true}).value();
  return kModule;
}

void setChannel(const ImageView& view, int x, int y, int c, double value) {
  std::byte* const pixel = view.pixel(x, y);
  switch (view.depth) {
    case Depth::Bits8:
      reinterpret_cast<std::uint8_t*>(pixel)[c] = static_cast<std::uint8_t>(std::lround(value * 255.0));
      break;
    case Depth::Bits16:
      reinterpret_cast<std::uint16_t*>(pixel)[c] = static_cast<std::uint16_t>(std::lround(value * 65535.0));
      break;
    case Depth::Float:
      reinterpret_cast<float*>(pixel)[c] = static_cast<float>(value);
      break;
  }
}

Image noise(Size size, Depth depth, unsigned seed) {
  Image image = Image::create(size, depth).value();
  std::mt19937 random(seed);
  for (const auto [x, y, c] : channelsOf(size.width, size.height)) {
    setChannel(image.view(), x, y, c, random() / 4294967295.0);
  }
  return image;
}

Image waves(Size size, Depth depth, double wavelength) {
  Image image = Image::create(size, depth).value();
  const double turn = 2.0 * M_PI / wavelength;
  for (const auto [x, y] : pixelsOf(size.width, size.height)) {
    setChannel(image.view(), x, y, 0, 1.0);
    setChannel(image.view(), x, y, 1, 0.5 + 0.5 * std::sin(turn * x));
    setChannel(image.view(), x, y, 2, 0.5 + 0.5 * std::sin(turn * y));
    setChannel(image.view(), x, y, 3, 0.5 + 0.5 * std::sin(turn * (x + y) * 0.7));
  }
  return image;
}

Image dirty(Size size, Depth depth) {
  Image image = Image::create(size, depth).value();
  std::memset(image.view().data, 0xDB, static_cast<std::size_t>(image.view().row_bytes) * size.height);
  return image;
}

ConstImageView partOf(const ConstImageView& view, const Rect& part) {
  return {view.pixel(part.left, part.top), view.row_bytes, {part.width(), part.height()}, view.depth};
}

bool samePixels(const ConstImageView& a, const ConstImageView& b) {
  if (a.size != b.size || a.depth != b.depth) {
    return false;
  }
  for (int y = 0; y < a.size.height; ++y) {
    if (std::memcmp(a.row(y), b.row(y), bytesPerPixel(a.depth) * a.size.width) != 0) {
      return false;
    }
  }
  return true;
}

bool samePixels(const Image& a, const Image& b) {
  return samePixels(a.view(), b.view());
}

double channelAt(const ConstImageView& view, int x, int y, int channel) {
  const std::byte* const pixel = view.pixel(x, y);
  switch (view.depth) {
    case Depth::Bits8:
      return static_cast<double>(pixel[channel]);
    case Depth::Bits16:
      return reinterpret_cast<const std::uint16_t*>(pixel)[channel];
    default:
      return static_cast<double>(reinterpret_cast<const float*>(pixel)[channel]);
  }
}

double channelAt(const Image& image, int x, int y, int channel) {
  return channelAt(image.view(), x, y, channel);
}

double psnr(const Image& a, const Image& b, int margin) {
  const int width = a.size().width - 2 * margin;
  const int height = a.size().height - 2 * margin;
  double squares = 0.0;
  for (const auto [x, y, c] : channelsOf(width, height)) {
    squares += std::pow(channelAt(a, x + margin, y + margin, c) - channelAt(b, x + margin, y + margin, c), 2);
  }
  return 10.0 * std::log10(255.0 * 255.0 * 4.0 * width * height / squares);
}

double coverageOf(const CoverageRegion& region, int x, int y) {
  const RowCoverage row = region.row(y);
  if (x < row.begin || x >= row.end) {
    return 0.0;
  }
  return x >= row.solid_begin && x < row.solid_end ? 1.0 : row.at(x);
}

Frame renderFrame(Instance& instance, const Image& layer, const Rect& canvas, const FrameOptions& options) {
  Frame frame{dirty(downsampled({canvas.width(), canvas.height()}, options.downsample), layer.depth()), {}};
  const Result<FrameResult> result = instance.render(layer.view(), canvas, frame.pixels.view(), options);
  if (result) {
    frame.result = *result;
  } else {
    ADD_FAILURE() << result.error().input << ": " << result.error().message;
  }
  return frame;
}

Frame renderFrame(const Corners& corners, const Image& layer, const Rect& canvas, const FrameOptions& options) {
  Instance instance = instanceWith(corners);
  return renderFrame(instance, layer, canvas, options);
}

Instance instanceWith(const std::shared_ptr<const Module>& module, const Corners& corners) {
  Instance instance(module);
  const Result<void> set = instance.setCorners(corners);
  EXPECT_TRUE(set) << set.error().message;
  return instance;
}

Instance instanceWith(const Corners& corners) {
  return instanceWith(checkedEffect(), corners);
}

}  // namespace testing
}  // namespace vantorel::host
