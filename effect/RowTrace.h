// Tracing one output row of the perspective renderer, written once for both qualities and every pixel type.
//
// A walk gives the row's pixels: it steps the projective coordinates from pixel to pixel, stores them into a block, has
// the block computed, and hands out each pixel's sample. While a block's pixels are sampled by the host, the walk
// already stores the next block, so that the two overlap.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "effect/PerspectiveInfo.h"
#include "effect/RowBlocks.h"

// So many pixels of the next block are stored at once: enough to keep the coordinates in registers meanwhile, few
// enough for the processor to overlap their chain of additions with the sampling.
constexpr int kWalkGroup = 4;

// The columns of a row inside the reject box, [first, end); a bound that is not a number rejects nothing.
struct ColumnRange {
  std::int64_t first;
  std::int64_t end;
};

inline ColumnRange AcceptedColumns(const KZFX_PerspectiveInfo& info, std::int64_t first, std::int64_t end) {
  ColumnRange range{first, end};
  if (info.bound_left > static_cast<double>(first)) {
    range.first =
        info.bound_left < static_cast<double>(end) ? static_cast<std::int64_t>(std::ceil(info.bound_left)) : end;
  }
  if (info.bound_right < static_cast<double>(end)) {
    range.end = info.bound_right >= static_cast<double>(first)
                    ? std::min(end, static_cast<std::int64_t>(std::floor(info.bound_right)) + 1)
                    : first;
  }
  range.first = std::min(range.first, end);
  range.end = std::max(range.end, range.first);
  return range;
}

// True when the row lies above or below the reject box.
inline bool RowIsRejected(const KZFX_PerspectiveInfo& info, std::int32_t y) {
  return y > info.bound_bottom || y < info.bound_top;
}

// Makes `count` pixels transparent, at the speed of memory: all channels zero is all bytes zero, also for floats.
template <typename Pixel>
void ClearPixels(Pixel* out, std::int64_t count) {
  std::memset(static_cast<void*>(out), 0, static_cast<std::size_t>(count) * sizeof(Pixel));
}

// Writes the row of `out_width` pixels that starts at output pixel (x, y), from `out` on.
//
// The walk steps before it evaluates; the driver's corner points are shifted by a pixel to make up for it. The host's
// error codes are not looked at: a pixel that the host does not write repeats the one before it.
template <typename Walk, typename Pixel>
void TraceRow(const KZFX_PerspectiveInfo& info, std::int32_t x, std::int32_t y, Pixel* out,
              const RowBlockFunctions& functions) {
  if (info.out_width <= 0) {
    return;
  }
  const std::int64_t row_end = std::int64_t{x} + info.out_width;
  if (RowIsRejected(info, y)) {
    ClearPixels(out, info.out_width);
    return;
  }
  const ColumnRange columns = AcceptedColumns(info, x, row_end);
  if (columns.first == columns.end) {
    ClearPixels(out, info.out_width);
    return;
  }
  ClearPixels(out, columns.first - x);
  ClearPixels(out + (columns.end - x), row_end - columns.end);

  const PF_AreaSampler<Pixel> sample = AreaSamplerOf<Pixel>(info);
  Walk walk(info, x, y);
  for (std::int64_t column = x; column < columns.first; ++column) {
    walk.Skip();
  }
  std::int64_t remaining = columns.end - columns.first;
  walk.StoreNext(0, static_cast<int>(std::min<std::int64_t>(remaining, kRowBlock)));
  Pixel working{};
  for (Pixel* block_out = out + (columns.first - x); remaining > 0; block_out += kRowBlock, remaining -= kRowBlock) {
    const int count = static_cast<int>(std::min<std::int64_t>(remaining, kRowBlock));
    walk.ComputeBlock(functions, count);
    const int next_count = static_cast<int>(std::clamp<std::int64_t>(remaining - kRowBlock, 0, kRowBlock));
    for (int i = 0; i < count; ++i) {
      if (i % kWalkGroup == 0 && i < next_count) {
        walk.StoreNext(i, std::min(i + kWalkGroup, next_count));
      }
      if (walk.HasSample(i)) {
        sample(info.effect_ref, walk.X(i), walk.Y(i), walk.Params(i), &working);
      } else {
        working = Pixel{};
      }
      block_out[i] = working;
    }
  }
}
