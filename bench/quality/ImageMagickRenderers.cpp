// ImageMagick's perspective distortion, which filters over the pixel's elliptical footprint. Its pictures have straight
// alpha.
#include <Magick++.h>

#include "bench/quality/Renderer.h"

namespace vantorel::quality {

namespace {

std::vector<unsigned char> packed(const host::ConstImageView& view) {
  std::vector<unsigned char> channels;
  for (int y = 0; y < view.size.height; ++y) {
    const auto* row = reinterpret_cast<const unsigned char*>(view.row(y));
    channels.insert(channels.end(), row, row + std::ptrdiff_t{4} * view.size.width);
  }
  return channels;
}

// Pairs of points, layer and canvas: x, y, x, y. Pixel k covers [k, k + 1) here too.
std::vector<double> controlPoints(const Scene& scene) {
  const Ring from = ringOf(scene.layer);
  const Ring to = ringOf(scene.corners);
  std::vector<double> points;
  for (std::size_t i = 0; i < 4; ++i) {
    points.insert(points.end(), {from[i].x, from[i].y, to[i].x, to[i].y});
  }
  return points;
}

void deliverPremultiplied(Magick::Image& image, const host::ImageView& output) {
  const auto width = static_cast<std::size_t>(output.size.width);
  for (int y = 0; y < output.size.height; ++y) {
    auto* row = reinterpret_cast<unsigned char*>(output.row(y));
    image.write(0, y, width, 1, "ARGB", Magick::CharPixel, row);
    for (std::size_t x = 0; x < width; ++x) {
      for (std::size_t i = 1; i < 4; ++i) {
        row[4 * x + i] = static_cast<unsigned char>((row[4 * x + i] * row[4 * x] + 127) / 255);
      }
    }
  }
}

Frame prepare(const Scene& scene, const host::ConstImageView& view, const host::ImageView& output) {
  static const bool kReady = (Magick::InitializeMagick(nullptr), true);
  static_cast<void>(kReady);
  const std::vector<unsigned char> channels = packed(view);
  const auto layer = std::make_shared<Magick::Image>(static_cast<std::size_t>(view.size.width),
                                                     static_cast<std::size_t>(view.size.height), "ARGB",
                                                     Magick::CharPixel, channels.data());
  layer->matte(true);
  layer->virtualPixelMethod(Magick::TransparentVirtualPixelMethod);
  layer->artifact("distort:viewport",
                  std::to_string(output.size.width) + "x" + std::to_string(output.size.height) + "+0+0");
  const auto result = std::make_shared<Magick::Image>();
  return {[=, points = controlPoints(scene)] {
            MagickCore::SetMagickResourceLimit(MagickCore::ThreadResource, 1);
            *result = *layer;
            result->distort(Magick::PerspectiveDistortion, points.size(), points.data(), false);
          },
          [=] { deliverPremultiplied(*result, output); }};
}

}  // namespace

std::vector<Renderer> imageMagickRenderers() {
  return {{"ImageMagick distort", false, false, prepare}};
}

}  // namespace vantorel::quality
