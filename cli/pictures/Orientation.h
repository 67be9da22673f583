// The eight ways in which a camera may have been held.
#pragma once

#include "host/Image.h"

namespace vantorel::cli {

// Whether that orientation (1 to 8, as TIFF and Exif count them) swaps width and height.
constexpr bool swapsAxes(int orientation) {
  return orientation >= 5 && orientation <= 8;
}

// The picture upright. `orientation` must be 2 to 8.
host::Image upright(const host::ConstImageView& stored, int orientation);

}  // namespace vantorel::cli
