#include "host/frames/DegenerateMapRetry.h"

#include <algorithm>
#include <cstring>
#include <numeric>

#include "host/frames/WorldRow.h"
#include "support/FixedUnits.h"

namespace vantorel::host {

namespace {

// How far the new canvas corner is from the old one: whole pixels, so that the picture is not resampled. The two
// numbers differ so that a horizon at 45 degrees cannot pass through both corners.
constexpr int kExtraColumns = 1;
constexpr int kExtraRows = 2;

// A row is all zeros if its first byte is zero and it equals itself shifted by a byte.
bool isBlankRow(const PF_LayerDef& world, Depth depth, int y) {
  const std::byte* const row = worldRow<std::byte>(world, y);
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
  const auto value = [&](std::size_t i) { return doubleFromFixed(frame.params[i].value.point.*coordinate); };
  const auto [low, high] = std::minmax({value(1), value(2), value(3), value(4)});
  return {low, high};
}

}  // namespace

bool needsRetry(const FrameState& frame, const Rect& canvas) {
  if (!frame.iterated || frame.guard) {
    return false;
  }
  const Extent x = extentOf(frame, &PF_PointValue::point_x);
  const Extent y = extentOf(frame, &PF_PointValue::point_y);
  if (x.low >= canvas.right || x.high <= canvas.left || y.low >= canvas.bottom || y.high <= canvas.top) {
    return false;
  }
  // Checked first: nearly every frame shows something in the row at the middle of the corners, which avoids searching
  // all of it.
  const int middle =
      static_cast<int>(std::clamp(std::midpoint(y.low, y.high), static_cast<double>(canvas.top), canvas.bottom - 1.0));
  return isBlankRow(frame.output, frame.depth, middle - canvas.top) && isBlank(frame.output, frame.depth) &&
         !isBlank(frame.input, frame.depth);
}

Result<void> drawOnShiftedCanvas(const FrameJob& job, const Rect& canvas) {
  FrameState& frame = job.frame;
  const Size size{canvas.width() + kExtraColumns, canvas.height() + kExtraRows};
  if (Result<void> fitted = frame.retry_canvas.fit(size, frame.depth); !fitted) {
    return fitted;
  }
  const PF_LayerDef output = frame.output;
  frame.output = worldOf(frame.retry_canvas.view());
  const Result<Rect> drawn =
      drawFrame(job, {canvas.left - kExtraColumns, canvas.top - kExtraRows, canvas.right, canvas.bottom});
  frame.output = output;
  if (!drawn) {
    return tl::unexpected(drawn.error());
  }
  const ImageView view = frame.retry_canvas.view();
  for (int y = 0; y < output.height; ++y) {
    std::memcpy(worldRow<std::byte>(output, y), view.pixel(kExtraColumns, y + kExtraRows),
                rowPixelBytes(output, frame.depth));
  }
  return {};
}

}  // namespace vantorel::host
