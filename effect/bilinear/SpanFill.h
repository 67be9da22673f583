// Drawing one span of the bilinear renderer, written once for every pixel family.
#pragma once

#include <cstddef>
#include <cstdint>

#include "effect/FixedPoint.h"
#include "effect/Int32Arithmetic.h"
#include "effect/bilinear/PixelSampling.h"
#include "effect/bilinear/QuadEdges.h"
#include "effect/bilinear/WholePixels.h"

// The weight that keeps the output where the source covers `covered_width` by `cover` of a pixel; a cover of 0 is a
// whole row. Of the weight only the fraction counts, so the product may wrap.
constexpr std::int32_t uncoveredWeight(std::int32_t covered_width, std::int32_t cover) {
  return cover == 0 ? kFixedOne - covered_width : kFixedOne - (wrapMul(covered_width, cover) >> 16);
}

// Mixes the source pixel at (u, v), read directly, into a pixel, of which the weight's share is kept.
template <typename Family>
void drawPartialPixel(const InputView& input, std::int32_t u, std::int32_t v, std::int32_t weight, std::byte* address) {
  Family::store(address, Family::mix(readInput<Family>(input, u, v), Family::load(address), weight));
}

// Draws the pixels that the walk from the left leaves at a span's right end, of a span that ends inside the row.
template <typename Family>
void drawRightEnd(const InputView& input, const QuadSpan& span, std::int32_t cover, std::byte* row,
                  std::int64_t width) {
  const auto draw = [&](std::int64_t column, std::int32_t covered_width, std::int32_t u, std::int32_t v) {
    const std::int32_t weight = uncoveredWeight(covered_width, cover);
    // A weight of 1.0 would count as 0.
    if (column >= 0 && column < width && weight != kFixedOne) {
      drawPartialPixel<Family>(input, u, v, weight, row + column * Family::kPixelBytes);
    }
  };
  const std::int32_t fraction = fixedFraction(span.right);
  const std::int64_t last_column = fraction != 0 ? fixedFloor(span.right) : std::int64_t{fixedFloor(span.right)} - 1;
  const std::int32_t last_covered = fraction != 0 ? fraction : kFixedOne;
  const std::int64_t span_width = std::int64_t{span.right} - span.left;
  if (span_width > kFixedOne) {
    draw(last_column, last_covered, span.right_u, span.right_v);
    return;
  }
  if (fixedFloor(span.left) == last_column) {
    draw(last_column, static_cast<std::int32_t>(span_width), span.u, span.v);
    return;
  }
  draw(fixedFloor(span.left), kFixedOne - fixedFraction(span.left), span.u, span.v);
  draw(last_column, last_covered, span.right_u, span.right_v);
}

// How many source rows below what is read for a span the next row will read something new, if the source position
// changes from that span to the next as it did from the one before.
inline std::int64_t rowsAhead(const QuadSpan& before, const QuadSpan& span) {
  const std::int64_t columns = std::int64_t{span.left} - before.left;
  const std::int64_t change = std::int64_t{span.v} - before.v - before.dv * (columns >> 16);
  return change < 0 ? change >> 16 : ((change + kFixedOne - 1) >> 16) + 1;
}

// Draws a span into an output row of `width` pixels; `rows_ahead` as in PixelRun.
template <typename Family>
void drawSpan(const InputView& input, const QuadSpan& span, std::int64_t rows_ahead, std::int32_t cover, std::byte* row,
              std::int32_t width) {
  const std::int64_t world_end = std::int64_t{width} * kFixedOne;
  const bool ends_inside = span.right < world_end;
  const std::int64_t x_end = ends_inside ? std::int64_t{span.right} - kFixedOne : world_end;

  std::int64_t x = span.left;
  PixelRun run{span.u, span.v, span.du, span.dv, 0, rows_ahead};
  const std::int32_t fraction = fixedFraction(span.left);
  if (fraction != 0) {
    const std::int32_t rest = kFixedOne - fraction;
    if (x >= 0 && x < x_end) {
      drawPartialPixel<Family>(input, run.u, run.v, uncoveredWeight(rest, cover),
                               row + (x >> 16) * Family::kPixelBytes);
    }
    run.u = wrapAdd(run.u, KZ_FixMulDiv(span.du, rest, kFixedOne));
    run.v = wrapAdd(run.v, KZ_FixMulDiv(span.dv, rest, kFixedOne));
    x += rest;
  }

  const std::int64_t end_column = (x_end + kFixedOne - 1) >> 16;
  std::int64_t column = x >> 16;
  if (column < 0) {
    run = stepRun(run, -column);  // pixels left of the world are stepped over
    column = 0;
  }
  if (column < end_column) {
    run.count = end_column - column;
    drawWholePixels<Family>(input, run, cover, row + column * Family::kPixelBytes);
  }
  if (ends_inside) {
    drawRightEnd<Family>(input, span, cover, row, width);
  }
}
