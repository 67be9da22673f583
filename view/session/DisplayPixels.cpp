#include "view/session/DisplayPixels.h"

#include <cstring>
#include <utility>

#include "cli/base/CommandError.h"
#include "cli/base/Rows.h"
#include "cli/pictures/PixelConversion.h"
#include "cli/shots/ShotColour.h"

namespace vantorel::view {

namespace {

std::uint8_t to8Bits(std::uint16_t value) {
  return static_cast<std::uint8_t>((value * 255u + 32767u) / 65535u);
}
std::uint8_t to8Bits(float value) {
  return cli::quantise<std::uint8_t>(value);
}

template <typename Channel>
void convertRows(const host::ConstImageView& from, const host::ImageView& to) {
  cli::forRows(from.size.height, [&](int y) {
    const auto* source = reinterpret_cast<const Channel*>(from.row(y));
    auto* target = reinterpret_cast<std::uint8_t*>(to.row(y));
    for (int i = 0; i < 4 * from.size.width; ++i) {
      target[i] = to8Bits(source[i]);
    }
  });
}

host::Image copyOf(const host::ConstImageView& pixels) {
  host::Image copy = cli::valueOrThrow(host::Image::create(pixels.size, pixels.depth));
  const std::size_t row_bytes = host::bytesPerPixel(pixels.depth) * static_cast<std::size_t>(pixels.size.width);
  for (int y = 0; y < pixels.size.height; ++y) {
    std::memcpy(copy.view().row(y), pixels.row(y), row_bytes);
  }
  return copy;
}

}  // namespace

DisplayPicture displayed(std::shared_ptr<const void> owner, const host::ConstImageView& pixels, cli::ShotColour* colour,
                         const std::string& name) {
  if (pixels.depth == host::Depth::Bits8) {
    return {std::move(owner), pixels};
  }
  auto image = std::make_shared<host::Image>(cli::valueOrThrow(host::Image::create(pixels.size, host::Depth::Bits8)));
  if (pixels.depth == host::Depth::Bits16) {
    convertRows<std::uint16_t>(pixels, image->view());
  } else if (colour != nullptr && colour->convertsOutput()) {
    host::Image copy = copyOf(pixels);
    colour->leave(copy.view(), name);
    convertRows<float>(std::as_const(copy).view(), image->view());
  } else {
    convertRows<float>(pixels, image->view());
  }
  const host::ConstImageView view = std::as_const(*image).view();
  return {std::move(image), view};
}

void makeOpaque(const host::ImageView& pixels) {
  for (int y = 0; y < pixels.size.height; ++y) {
    auto* row = reinterpret_cast<std::uint8_t*>(pixels.row(y));
    for (int x = 0; x < pixels.size.width; ++x) {
      row[4 * x + 3] = 255;
    }
  }
}

}  // namespace vantorel::view
