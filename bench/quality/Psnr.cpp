#include "bench/quality/Psnr.h"

#include <algorithm>
#include <cmath>

namespace vantorel::quality {

namespace {

const unsigned char* pixelAt(const host::ConstImageView& picture, int x, int y) {
  return reinterpret_cast<const unsigned char*>(picture.pixel(x, y));
}

double meanSquare(const unsigned char* pixel, float alpha, float grey) {
  const auto square = [](double difference) { return difference * difference; };
  double sum = square(pixel[0] - static_cast<double>(alpha));
  for (int i = 1; i < 4; ++i) {
    sum += square(pixel[i] - static_cast<double>(grey));
  }
  return sum / 4;
}

Region regionAt(const Truth& truth, int x, int y) {
  const host::Rect& frame = truth.frame;
  const bool in_frame = x >= frame.left && x < frame.right && y >= frame.top && y < frame.bottom;
  return in_frame ? truth.regions[truth.index(x, y)] : Region::Outside;
}

}  // namespace

void SquaredError::add(const SquaredError& other) {
  sum += other.sum;
  pixels += other.pixels;
}

double SquaredError::psnr() const {
  return 10 * std::log10(255.0 * 255.0 * static_cast<double>(pixels) / sum);
}

void PictureError::add(const PictureError& other) {
  inside.add(other.inside);
  edges.add(other.edges);
  largest_outside = std::max(largest_outside, other.largest_outside);
}

PictureError compare(const host::ConstImageView& picture, const Truth& truth, std::size_t layer) {
  PictureError error;
  for (int y = 0; y < picture.size.height; ++y) {
    for (int x = 0; x < picture.size.width; ++x) {
      const unsigned char* pixel = pixelAt(picture, x, y);
      const Region region = regionAt(truth, x, y);
      if (region == Region::Outside) {
        error.largest_outside = std::max<int>(error.largest_outside, *std::max_element(pixel, pixel + 4));
        continue;
      }
      const std::size_t index = truth.index(x, y);
      const SquaredError one{meanSquare(pixel, truth.alpha[index], truth.grey[layer][index]), 1};
      (region == Region::Inside ? error.inside : error.edges).add(one);
    }
  }
  return error;
}

}  // namespace vantorel::quality
