#include "cli/pictures/Reduce.h"

#include <tbb/parallel_for.h>

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "cli/base/CommandError.h"
#include "host/Instance.h"

namespace vantorel::cli {

namespace {

template <typename Channel>
void reduceRow(const host::ConstImageView& picture, int n, int y, Channel* out) {
  const int top = y * n;
  const int bottom = std::min(picture.size.height, top + n);
  const int width = host::downsampled(picture.size, n).width;
  for (int x = 0; x < width; ++x, out += 4) {
    const int left = x * n;
    const int right = std::min(picture.size.width, left + n);
    double sums[4] = {};
    for (int v = top; v < bottom; ++v) {
      for (int u = left; u < right; ++u) {
        for (int c = 0; c < 4; ++c) {
          sums[c] += reinterpret_cast<const Channel*>(picture.pixel(u, v))[c];
        }
      }
    }
    const double count = static_cast<double>(bottom - top) * (right - left);
    for (int c = 0; c < 4; ++c) {
      out[c] = static_cast<Channel>(sums[c] / count + (std::is_floating_point_v<Channel> ? 0.0 : 0.5));
    }
  }
}

template <typename Channel>
void reduceRows(const host::ConstImageView& picture, int n, const host::ImageView& result) {
  tbb::parallel_for(0, result.size.height,
                    [&](int y) { reduceRow(picture, n, y, reinterpret_cast<Channel*>(result.row(y))); });
}

}  // namespace

host::Image reduced(const host::ConstImageView& picture, int n) {
  host::Image result = valueOrThrow(host::Image::create(host::downsampled(picture.size, n), picture.depth));
  switch (picture.depth) {
    case host::Depth::Bits8:
      reduceRows<std::uint8_t>(picture, n, result.view());
      break;
    case host::Depth::Bits16:
      reduceRows<std::uint16_t>(picture, n, result.view());
      break;
    case host::Depth::Float:
      reduceRows<float>(picture, n, result.view());
      break;
  }
  return result;
}

}  // namespace vantorel::cli
