#include "cli/pictures/Orientation.h"

#include <cstring>

#include "cli/base/CommandError.h"

namespace vantorel::cli {

namespace {

// Which stored pixel an upright picture's pixel comes from: its column grows along x unless axes are swapped.
struct StoredPosition {
  int x;
  int y;
};

StoredPosition storedPosition(int orientation, int x, int y, host::Size stored) {
  const int right = stored.width - 1;
  const int bottom = stored.height - 1;
  switch (orientation) {
    case 2:
      return {right - x, y};
    case 3:
      return {right - x, bottom - y};
    case 4:
      return {x, bottom - y};
    case 5:
      return {y, x};
    case 6:
      return {y, bottom - x};
    case 7:
      return {right - y, bottom - x};
    case 8:
      return {right - y, x};
    default:
      return {x, y};
  }
}

template <std::size_t kPixelBytes>
void turn(const host::ConstImageView& stored, int orientation, const host::ImageView& turned) {
  for (int y = 0; y < turned.size.height; ++y) {
    for (int x = 0; x < turned.size.width; ++x) {
      const StoredPosition from = storedPosition(orientation, x, y, stored.size);
      std::memcpy(turned.pixel(x, y), stored.pixel(from.x, from.y), kPixelBytes);
    }
  }
}

}  // namespace

host::Image upright(const host::ConstImageView& stored, int orientation) {
  host::Size size = stored.size;
  if (swapsAxes(orientation)) {
    std::swap(size.width, size.height);
  }
  host::Image turned = valueOrThrow(host::Image::create(size, stored.depth));
  switch (stored.depth) {
    case host::Depth::Bits8:
      turn<4>(stored, orientation, turned.view());
      break;
    case host::Depth::Bits16:
      turn<8>(stored, orientation, turned.view());
      break;
    case host::Depth::Float:
      turn<16>(stored, orientation, turned.view());
      break;
  }
  return turned;
}

}  // namespace vantorel::cli
