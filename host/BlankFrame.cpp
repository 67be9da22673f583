#include "host/BlankFrame.h"

#include <algorithm>
#include <cstring>

namespace vantorel::host {

namespace {

// The new corner's distance from the old, in whole pixels, so that the picture stays where it is. The two differ, so
// that a horizon that climbs at 45 degrees does not meet both.
constexpr int kMoreColumns = 1;
constexpr int kMoreRows = 2;

std::size_t rowPixelBytes(const PF_LayerDef& world, Depth depth) {
  return bytesPerPixel(depth) * static_cast<std::size_t>(world.width);
}

std::byte* rowOf(const PF_LayerDef& world, int y) {
  return static_cast<std::byte*>(world.data) + std::ptrdiff_t{world.row_bytes} * y;
}

bool isBlank(const PF_LayerDef& world, Depth depth) {
  const std::size_t bytes = rowPixelBytes(world, depth);
  for (int y = 0; y < world.height; ++y) {
    // A row is zero throughout when it begins with a zero and equals itself moved by a byte.
    const std::byte* const row = rowOf(world, y);
    if (row[0] != std::byte{0} || std::memcmp(row, row + 1, bytes - 1) != 0) {
      return false;
    }
  }
  return true;
}

bool cornersMeet(const FrameState& frame, const Rect& canvas) {
  const auto overlaps = [&](std::int32_t PF_PointValue::*coordinate, int begin, int end) {
    const auto value = [&](std::size_t i) { return frame.params[i].value.point.*coordinate / 65536.0; };
    const auto [low, high] = std::minmax({value(1), value(2), value(3), value(4)});
    return low < end && high > begin;
  };
  return overlaps(&PF_PointValue::point_x, canvas.left, canvas.right) &&
         overlaps(&PF_PointValue::point_y, canvas.top, canvas.bottom);
}

}  // namespace

bool isUnexpectedlyBlank(const FrameState& frame, const Rect& canvas) {
  return isBlank(frame.output, frame.depth) && cornersMeet(frame, canvas) && !isBlank(frame.input, frame.depth);
}

Result<void> drawFromAnotherCorner(const FrameJob& job, const Rect& canvas, Image* scratch) {
  FrameState& frame = job.frame;
  const Size size{canvas.width() + kMoreColumns, canvas.height() + kMoreRows};
  if (scratch->size() != size || scratch->depth() != frame.depth) {
    *scratch = Image();
    Result<Image> created = Image::create(size, frame.depth);
    if (!created) {
      return tl::unexpected(std::move(created).error());
    }
    *scratch = std::move(*created);
  }
  const PF_LayerDef output = frame.output;
  frame.output = worldOf(scratch->view());
  const Result<Rect> drawn =
      drawFrame(job, {canvas.left - kMoreColumns, canvas.top - kMoreRows, canvas.right, canvas.bottom});
  frame.output = output;
  if (!drawn) {
    return tl::unexpected(drawn.error());
  }
  const ImageView view = scratch->view();
  for (int y = 0; y < output.height; ++y) {
    std::memcpy(rowOf(output, y), view.pixel(kMoreColumns, y + kMoreRows), rowPixelBytes(output, frame.depth));
  }
  return {};
}

}  // namespace vantorel::host
