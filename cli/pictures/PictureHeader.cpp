#include "cli/pictures/PictureHeader.h"

#include <OpenImageIO/imageio.h>
#include <fmt/format.h>

#include <cstdint>

#include "cli/base/CommandError.h"

namespace vantorel::cli {

namespace {

void requireSpan(int begin, int size, const char* what, const std::string& path) {
  if (size < 1) {
    throw fileFailure(path, "has no pixels; give a picture of at least 1x1");
  }
  const std::int64_t end = std::int64_t{begin} + size;
  if (begin < -kWindowLimit || end > kWindowLimit) {
    throw fileFailure(path, fmt::format("its {} reaches from {} to {}; positions up to {} either way can be read", what,
                                        begin, end, kWindowLimit));
  }
}

}  // namespace

void requireSaneHeader(const OIIO::ImageSpec& spec, const std::string& path) {
  requireSpan(spec.x, spec.width, "data window's width", path);
  requireSpan(spec.y, spec.height, "data window's height", path);
  requireSpan(spec.full_x, spec.full_width, "display window's width", path);
  requireSpan(spec.full_y, spec.full_height, "display window's height", path);
  if (spec.tile_width < 0 || spec.tile_height < 0 || spec.tile_width > kWindowLimit ||
      spec.tile_height > kWindowLimit) {
    throw fileFailure(
        path, fmt::format("states tiles of {}x{} pixels; write the file again", spec.tile_width, spec.tile_height));
  }
}

host::Rect dataWindow(const OIIO::ImageSpec& spec, const std::string& format) {
  const bool states_display_window = format == "openexr" || spec.full_x != 0 || spec.full_y != 0 ||
                                     spec.full_width != spec.width || spec.full_height != spec.height;
  const int left = states_display_window ? spec.x - spec.full_x : 0;
  const int top = states_display_window ? spec.y - spec.full_y : 0;
  return {left, top, left + spec.width, top + spec.height};
}

int orientationOf(const OIIO::ImageSpec& spec) {
  const int orientation = spec.get_int_attribute("Orientation", 1);
  return orientation >= 1 && orientation <= 8 ? orientation : 1;
}

}  // namespace vantorel::cli
