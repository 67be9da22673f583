// Tracing one output row of the perspective renderer, written once for both qualities and every pixel type.
//
// A quality gives the walk along the row, the function that computes a block of its pixels, and what of the sampling
// record changes from pixel to pixel. The host samples a block's pixels one by one.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "effect/perspective/ClearPixels.h"
#include "effect/perspective/PerspectiveInfo.h"
#include "effect/perspective/PixelBatch.h"

// The columns of a row inside the reject box, [first, end); a bound that is not a number rejects nothing.
struct ColumnRange {
  std::int64_t first;
  std::int64_t end;
};

inline ColumnRange acceptedColumns(const KZFX_PerspectiveInfo& info, std::int64_t first, std::int64_t end) {
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
inline bool rowIsRejected(const KZFX_PerspectiveInfo& info, std::int32_t y) {
  return y > info.bound_bottom || y < info.bound_top;
}

// Makes `count` pixels of a row of the output transparent.
template <typename Pixel>
void clearPixels(const KZFX_PerspectiveInfo& info, Pixel* out, std::int64_t count) {
  const std::uint64_t pixels = static_cast<std::uint64_t>(info.out_width) * static_cast<std::uint32_t>(info.out_height);
  clearBytes(out, static_cast<std::size_t>(count) * sizeof(Pixel), clearingWayFor(pixels * sizeof(Pixel)));
}

// Samples a block's pixels in order into `out`. The host's error codes are not looked at: a pixel that the host does
// not write repeats the one before it, which `working` holds.
template <typename Quality, bool kSomeLieNowhere, typename Pixel>
void sampleBlock(const KZFX_PerspectiveInfo& info, const PixelBlock& block, int count, PF_SampleParams* params,
                 Pixel* working, Pixel* out) {
  const PF_AreaSampler<Pixel> sample = areaSamplerOf<Pixel>(info);
  void* const effect_ref = info.effect_ref;
  for (int i = 0; i < count; ++i) {
    if (kSomeLieNowhere && block.lies_nowhere[i]) {
      *working = Pixel{};
    } else {
      Quality::setBox(block.box[i], params);
      sample(effect_ref, block.x[i], block.y[i], params, working);
    }
    out[i] = *working;
  }
}

// A block's pixels and how many of them there are.
struct FilledBlock {
  PixelBlock pixels;
  int count = 0;
  bool any_nowhere = false;

  template <typename Quality>
  void fill(const RowBlockFunctions& functions, const InputScale& scale, std::int64_t remaining, RowWalk* walk) {
    count = static_cast<int>(std::min<std::int64_t>(remaining, kRowBlock));
    any_nowhere = count > 0 && Quality::computeBlock(functions, walk, scale, count, &pixels);
  }
};

// Draws the accepted columns of row y, from column x of the walk on. The next block is computed before a block is
// sampled: the first samples of a block would else wait for its computation to end.
template <typename Quality, typename Pixel>
void traceColumns(const KZFX_PerspectiveInfo& info, const ColumnRange& columns, std::int32_t x, std::int32_t y,
                  Pixel* out, const RowBlockFunctions& functions) {
  InputScale scale;
  RowWalk walk = Quality::walkFrom(info, x, y, &scale);
  walkAlong(&walk, static_cast<int>(columns.first - x));
  PF_SampleParams params = Quality::firstParams(info);
  Pixel working{};
  FilledBlock blocks[2];
  std::int64_t remaining = columns.end - columns.first;
  blocks[0].fill<Quality>(functions, scale, remaining, &walk);
  for (int current = 0; blocks[current].count > 0; current = 1 - current, out += kRowBlock) {
    const FilledBlock& block = blocks[current];
    remaining -= block.count;
    blocks[1 - current].fill<Quality>(functions, scale, remaining, &walk);
    if (block.any_nowhere) {
      sampleBlock<Quality, true>(info, block.pixels, block.count, &params, &working, out);
    } else {
      sampleBlock<Quality, false>(info, block.pixels, block.count, &params, &working, out);
    }
  }
}

// Writes the row of `out_width` pixels that starts at output pixel (x, y), from `out` on.
//
// The walk steps before it evaluates; the driver's corner points are shifted by a pixel to make up for it.
template <typename Quality, typename Pixel>
void traceRow(const KZFX_PerspectiveInfo& info, std::int32_t x, std::int32_t y, Pixel* out,
              const RowBlockFunctions& functions) {
  if (info.out_width <= 0) {
    return;
  }
  const std::int64_t row_end = std::int64_t{x} + info.out_width;
  const ColumnRange columns =
      rowIsRejected(info, y) ? ColumnRange{row_end, row_end} : acceptedColumns(info, x, row_end);
  clearPixels(info, out, columns.first - x);
  clearPixels(info, out + (columns.end - x), row_end - columns.end);
  if (columns.first < columns.end) {
    traceColumns<Quality>(info, columns, x, y, out + (columns.first - x), functions);
  }
}
