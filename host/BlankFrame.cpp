#include "host/BlankFrame.h"

#include <algorithm>
#include <cstring>
#include <numeric>

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

// A row is zero throughout when it begins with a zero and equals itself moved by a byte.
bool isBlankRow(const PF_LayerDef& world, Depth depth, int y) {
  const std::byte* const row = rowOf(world, y);
  return row[0] == std::byte{0} && std::memcmp(row, row + 1, rowPixelBytes(world, depth) - 1) == 0;
}

bool isBlank(const PF_LayerDef& world, Depth depth) {
  int y = 0;
  while (y < world.height && isBlankRow(world, depth, y)) {
    ++y;
  }
  return y == world.height;
}

// The range of a coordinate over the four corners, in layer pixels.
struct Extent {
  double low;
  double high;
};

Extent extentOf(const FrameState& frame, std::int32_t PF_PointValue::*coordinate) {
  const auto value = [&](std::size_t i) { return frame.params[i].value.point.*coordinate / 65536.0; };
  const auto [low, high] = std::minmax({value(1), value(2), value(3), value(4)});
  return {low, high};
}

}  // namespace

bool isUnexpectedlyBlank(const FrameState& frame, const Rect& canvas) {
  const Extent x = extentOf(frame, &PF_PointValue::point_x);
  const Extent y = extentOf(frame, &PF_PointValue::point_y);
  if (x.low >= canvas.right || x.high <= canvas.left || y.low >= canvas.bottom || y.high <= canvas.top) {
    return false;
  }
  // Nearly every frame shows something in the middle of the corners, which spares looking through it.
  const int middle =
      static_cast<int>(std::clamp(std::midpoint(y.low, y.high), static_cast<double>(canvas.top), canvas.bottom - 1.0));
  return isBlankRow(frame.output, frame.depth, middle - canvas.top) && isBlank(frame.output, frame.depth) &&
         !isBlank(frame.input, frame.depth);
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
