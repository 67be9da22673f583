#include "bridges/frei0r/Filter.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <utility>

#include "bridges/common/EmbeddedModule.h"
#include "host/Alpha.h"

namespace vantorel::frei0r {
namespace {

std::uint8_t* channels(std::byte* row) {
  return reinterpret_cast<std::uint8_t*>(row);
}

bool isOpaque(const host::ConstImageView& layer) {
  for (int y = 0; y < layer.size.height; ++y) {
    const auto* row = reinterpret_cast<const std::uint8_t*>(layer.row(y));
    if (host::alphaOfRow(row, layer.size.width) != host::RowAlpha::Opaque) {
      return false;
    }
  }
  return true;
}

void fade(std::uint8_t* row, int width, double opacity) {
  const auto share = static_cast<unsigned>(std::lround(opacity * 256.0));
  for (int c = 0; c < 4 * width; ++c) {
    row[c] = static_cast<std::uint8_t>((row[c] * share + 128) >> 8);
  }
}

void makeOpaque(std::uint8_t* row, int width) {
  for (int x = 0; x < width; ++x) {
    row[4 * x + 3] = host::kOpaque<std::uint8_t>;
  }
}

// 0 for NaN.
double clampedOpacity(double opacity) {
  return opacity > 0.0 ? std::min(opacity, 1.0) : 0.0;
}

}  // namespace

std::unique_ptr<Filter> Filter::create(unsigned width, unsigned height) {
  constexpr unsigned kMaxSide = 32767;  // the range of the effect's 16.16 numbers
  if (width == 0 || height == 0 || width > kMaxSide || height > kMaxSide) {
    return nullptr;
  }
  auto module = bridges::embeddedModule();
  if (!module) {
    return nullptr;
  }
  return std::unique_ptr<Filter>(new (std::nothrow)
                                     Filter(std::move(*module), {static_cast<int>(width), static_cast<int>(height)}));
}

Filter::Filter(std::shared_ptr<const host::Module> module, host::Size size)
    : instance_(std::move(module)), size_(size) {}

void Filter::draw(const std::uint32_t* in, std::uint32_t* out) {
  const auto count = static_cast<std::size_t>(size_.width) * static_cast<std::size_t>(size_.height);
  const host::ImageView output{reinterpret_cast<std::byte*>(out), std::ptrdiff_t{4} * size_.width, size_,
                               host::Depth::Bits8};
  host::ConstImageView layer{reinterpret_cast<const std::byte*>(in), output.row_bytes, size_, host::Depth::Bits8};
  if (in == out || !isOpaque(layer)) {
    layer = premultiplied(in);
  }
  const host::Rect drawn = layer.data != nullptr ? drawLayer(layer, output) : host::Rect{};
  if (drawn.empty()) {
    std::memset(out, 0, count * sizeof *out);
  }
  finish(output, drawn);
}

host::ConstImageView Filter::premultiplied(const std::uint32_t* in) {
  if (!layer_.fit(size_, host::Depth::Bits8)) {
    return {};
  }
  const auto row_bytes = std::size_t{4} * static_cast<std::size_t>(size_.width);
  for (int y = 0; y < size_.height; ++y) {
    std::byte* const row = layer_.view().row(y);
    std::memcpy(row, reinterpret_cast<const std::byte*>(in) + static_cast<std::size_t>(y) * row_bytes, row_bytes);
    host::premultiplyRow(channels(row), size_.width);
  }
  return std::as_const(layer_).view();
}

host::Rect Filter::drawLayer(const host::ConstImageView& layer, const host::ImageView& output) {
  if (!instance_.setCorners(parameters.cornersIn(size_))) {
    return {};
  }
  host::FrameOptions options;
  options.quality = parameters.quality;
  options.threads = 1;
  const auto frame = instance_.render(layer, {0, 0, size_.width, size_.height}, output, options);
  return frame ? frame->drawn : host::Rect{};
}

void Filter::finish(const host::ImageView& output, const host::Rect& drawn) const {
  const double opacity = clampedOpacity(parameters.opacity);
  for (int y = 0; y < size_.height; ++y) {
    std::uint8_t* const row = channels(output.row(y));
    const bool holds_layer = y >= drawn.top && y < drawn.bottom;
    if (holds_layer && opacity < 1.0) {
      fade(row, size_.width, opacity);
    }
    if (parameters.is_opaque_outside) {
      makeOpaque(row, size_.width);
    } else if (holds_layer) {
      host::unpremultiplyRow(row, size_.width);
    }
  }
}

}  // namespace vantorel::frei0r
