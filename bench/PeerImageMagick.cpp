// ImageMagick's perspective distortion, which filters over the pixel's elliptical footprint. It holds every picture at
// 16 bits with straight alpha.
#include <Magick++.h>

#include <memory>
#include <utility>
#include <vector>

#include "bench/Peers.h"
#include "bench/Pictures.h"

namespace vantorel::bench {

namespace {

// A picture's pixels without row padding.
std::vector<std::uint16_t> packed(const host::ConstImageView& view) {
  std::vector<std::uint16_t> channels;
  for (int y = 0; y < view.size.height; ++y) {
    const auto* row = reinterpret_cast<const std::uint16_t*>(view.row(y));
    channels.insert(channels.end(), row, row + std::ptrdiff_t{4} * view.size.width);
  }
  return channels;
}

// Pairs of points, layer and canvas, in the tool's order: x, y, x, y. Its pixel centres lie at half-integers, those of
// the effect at integers.
std::vector<double> controlPoints(const Workload& workload) {
  const double width = workload.layer.width;
  const double height = workload.layer.height;
  const auto& [upper_left, upper_right, lower_left, lower_right] = workload.corners;
  const std::pair<host::Point, host::Point> pairs[] = {
      {{0, 0}, upper_left}, {{width, 0}, upper_right}, {{0, height}, lower_left}, {{width, height}, lower_right}};
  std::vector<double> points;
  for (const auto& [from, to] : pairs) {
    points.insert(points.end(), {from.x + 0.5, from.y + 0.5, to.x + 0.5, to.y + 0.5});
  }
  return points;
}

void deliverPremultiplied(Magick::Image& image, const host::ImageView& output) {
  const auto width = static_cast<std::size_t>(output.size.width);
  for (int y = 0; y < output.size.height; ++y) {
    auto* row = reinterpret_cast<std::uint16_t*>(output.row(y));
    image.write(0, y, width, 1, "ARGB", Magick::ShortPixel, row);
    for (std::size_t x = 0; x < width; ++x) {
      for (std::size_t i = 1; i < 4; ++i) {
        row[4 * x + i] = static_cast<std::uint16_t>((std::uint32_t{row[4 * x + i]} * row[4 * x] + 32767) / 65535);
      }
    }
  }
}

Drawing prepareDistort(const Workload& workload, host::Depth depth, int threads) {
  static const bool kReady = (Magick::InitializeMagick(nullptr), true);
  static_cast<void>(kReady);
  const std::vector<std::uint16_t> channels = packed(picture(workload.layer, depth));
  const auto layer = std::make_shared<Magick::Image>(static_cast<std::size_t>(workload.layer.width),
                                                     static_cast<std::size_t>(workload.layer.height), "ARGB",
                                                     Magick::ShortPixel, channels.data());
  layer->matte(true);
  layer->virtualPixelMethod(Magick::TransparentVirtualPixelMethod);
  layer->artifact("distort:viewport", sizeText(workload.canvas) + "+0+0");
  const auto result = std::make_shared<Magick::Image>();
  return {[=, points = controlPoints(workload)] {
            MagickCore::SetMagickResourceLimit(MagickCore::ThreadResource,
                                               static_cast<MagickCore::MagickSizeType>(threads));
            *result = *layer;
            result->distort(Magick::PerspectiveDistortion, points.size(), points.data(), false);
          },
          [=, output = canvas(workload.canvas, depth)] { deliverPremultiplied(*result, output); }};
}

}  // namespace

std::vector<Peer> imageMagickPeers() {
  return {{"magick", {"a", "c"}, {}, {host::Depth::Bits16}, false, true, prepareDistort}};
}

}  // namespace vantorel::bench
