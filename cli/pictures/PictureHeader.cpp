#include "cli/pictures/PictureHeader.h"

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

bool isPossible(int tile_side) {
  return tile_side >= 0 && tile_side <= kWindowLimit;
}

}  // namespace

void requireSaneHeader(const PictureHeader& header, const std::string& path) {
  requireSpan(header.data.x, header.data.width, "data window's width", path);
  requireSpan(header.data.y, header.data.height, "data window's height", path);
  requireSpan(header.display.x, header.display.width, "display window's width", path);
  requireSpan(header.display.y, header.display.height, "display window's height", path);
  if (!isPossible(header.tile.width) || !isPossible(header.tile.height)) {
    throw fileFailure(
        path, fmt::format("states tiles of {}x{} pixels; write the file again", header.tile.width, header.tile.height));
  }
}

host::Rect dataWindow(const PictureHeader& header) {
  const Window& data = header.data;
  const Window& display = header.display;
  const bool states_display_window = header.format == "openexr" || display.x != 0 || display.y != 0 ||
                                     display.width != data.width || display.height != data.height;
  const int left = states_display_window ? data.x - display.x : 0;
  const int top = states_display_window ? data.y - display.y : 0;
  return {left, top, left + data.width, top + data.height};
}

}  // namespace vantorel::cli
