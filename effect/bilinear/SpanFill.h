// Drawing a row's span, written once for every pixel depth: its whole pixels, and the partly covered ones at its ends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "effect/FixedPoint.h"
#include "effect/Int32Arithmetic.h"
#include "effect/bilinear/PixelSampling.h"
#include "effect/bilinear/QuadEdges.h"
#include "support/KZFX_srect.h"

// The output row that a span is drawn into.
struct OutputRow {
  std::byte* data;
  std::int32_t width;     // pixels
  std::int32_t coverage;  // the part of its height that is covered, 16.16, or 0 for all of it
};

// Adjacent whole pixels of an output row, and the source positions at which they are sampled (16.16, wrapping).
struct PixelSpan {
  std::int64_t column;  // the first pixel's
  std::int64_t count;
  std::int32_t u;  // the first pixel's
  std::int32_t v;
  std::int32_t du;  // the change per pixel
  std::int32_t dv;
  std::int64_t rows_ahead;  // how many source rows below this span's the next output row will read
};

// The span without its first `pixels` pixels. All steps are taken at once and wrap as single steps would.
constexpr PixelSpan stepSpan(PixelSpan span, std::int64_t pixels) {
  const auto steps = static_cast<std::int32_t>(static_cast<std::uint32_t>(pixels));
  span.column += pixels;
  span.count -= pixels;
  span.u = wrapAdd(span.u, wrapMul(span.du, steps));
  span.v = wrapAdd(span.v, wrapMul(span.dv, steps));
  return span;
}

// ---- Where a span's parts lie --------------------------------------------------------------------------------------

constexpr bool endsInside(const QuadSpan& span, std::int32_t width) {
  return span.right < std::int64_t{width} * kFixedOne;
}

// Where the pixels before the span's right end stop, in 16.16 columns: at the row's end, or else a pixel before the
// span's end, since drawRightEnd() draws that pixel.
constexpr std::int64_t endOfWholePixels(const QuadSpan& span, std::int32_t width) {
  return endsInside(span, width) ? std::int64_t{span.right} - kFixedOne : std::int64_t{width} * kFixedOne;
}

// The whole pixels of a span in a row of `width` pixels.
inline PixelSpan wholePixels(const QuadSpan& span, std::int32_t width, std::int64_t rows_ahead) {
  const std::int64_t end_column = (endOfWholePixels(span, width) + kFixedOne - 1) >> 16;
  PixelSpan pixels{fixedFloor(span.left), 0, span.u, span.v, span.du, span.dv, rows_ahead};
  const std::int32_t fraction = fixedFraction(span.left);
  if (fraction != 0) {
    const std::int32_t rest = kFixedOne - fraction;
    pixels.u = wrapAdd(span.u, KZ_FixMulDiv(span.du, rest, kFixedOne));
    pixels.v = wrapAdd(span.v, KZ_FixMulDiv(span.dv, rest, kFixedOne));
    ++pixels.column;
  }
  if (pixels.column < 0) {
    pixels = stepSpan(pixels, -pixels.column);  // skip pixels left of the row
  }
  pixels.count = M_Max<std::int64_t>(end_column - pixels.column, 0);
  return pixels;
}

// How many source rows below this span's the next row will read, assuming that the source position changes from this
// span to the next as it did from the previous one.
inline std::int64_t rowsAhead(const QuadSpan& before, const QuadSpan& span) {
  const std::int64_t columns = std::int64_t{span.left} - before.left;
  const std::int64_t change = std::int64_t{span.v} - before.v - before.dv * (columns >> 16);
  return change < 0 ? change >> 16 : ((change + kFixedOne - 1) >> 16) + 1;
}

// ---- Partly covered pixels at the ends -----------------------------------------------------------------------------

// The weight of the output's own pixel where the source covers `covered_width` of it in a row of that coverage. Only
// the weight's fraction is used, so the product may wrap.
constexpr std::int32_t uncoveredWeight(std::int32_t covered_width, std::int32_t coverage) {
  return coverage == 0 ? kFixedOne - covered_width : kFixedOne - (wrapMul(covered_width, coverage) >> 16);
}

// Mixes the source pixel at (u, v), unfiltered, into an output pixel; `weight` is the share of the output pixel that is
// kept.
template <typename Traits>
void drawPartialPixel(const InputView& input, std::int32_t u, std::int32_t v, std::int32_t weight, std::byte* address) {
  Traits::store(address, Traits::mix(readInput<Traits>(input, u, v), Traits::load(address), weight));
}

// Draws the partly covered pixel at a span's left end.
template <typename Traits>
void drawLeftEnd(const InputView& input, const QuadSpan& span, const OutputRow& row) {
  const std::int32_t fraction = fixedFraction(span.left);
  if (fraction != 0 && span.left >= 0 && span.left < endOfWholePixels(span, row.width)) {
    drawPartialPixel<Traits>(input, span.u, span.v, uncoveredWeight(kFixedOne - fraction, row.coverage),
                             row.data + fixedFloor(span.left) * Traits::kPixelBytes);
  }
}

// Draws the rest of a span that ends inside the row: the pixel in which it ends and, for a span no wider than a pixel,
// also the one in which it begins. `after` is the position after the last whole pixel.
template <typename Traits>
void drawRightEnd(const InputView& input, const QuadSpan& span, const PixelSpan& after, const OutputRow& row) {
  const auto draw = [&](std::int64_t column, std::int32_t covered_width, std::int32_t u, std::int32_t v) {
    const std::int32_t weight = uncoveredWeight(covered_width, row.coverage);
    // A weight of 1.0 would count as 0.
    if (column >= 0 && column < row.width && weight != kFixedOne) {
      drawPartialPixel<Traits>(input, u, v, weight, row.data + column * Traits::kPixelBytes);
    }
  };
  const std::int32_t fraction = fixedFraction(span.right);
  const std::int64_t last_column = fraction != 0 ? fixedFloor(span.right) : std::int64_t{fixedFloor(span.right)} - 1;
  const std::int32_t last_covered = fraction != 0 ? fraction : kFixedOne;
  const std::int64_t span_width = std::int64_t{span.right} - span.left;
  if (fixedFloor(span.left) == last_column) {
    draw(last_column, static_cast<std::int32_t>(span_width), span.u, span.v);
    return;
  }
  if (span_width <= kFixedOne) {
    draw(fixedFloor(span.left), kFixedOne - fixedFraction(span.left), span.u, span.v);
  }
  draw(last_column, last_covered, after.u, after.v);
}

// ---- Whole pixels --------------------------------------------------------------------------------------------------

// Mixes a sample into a partly covered row, or overwrites the pixel in a fully covered one.
template <typename Traits>
void putPixel(std::byte* address, const typename Traits::Unpacked& sample, std::int32_t coverage) {
  Traits::store(address, coverage == 0 ? sample : Traits::mix(Traits::load(address), sample, coverage));
}

// Fills pixels at any source positions, which are clamped to the input.
template <typename Traits>
void fillClamped(const InputView& input, const PixelSpan& span, const OutputRow& row) {
  const AxisFilter filter_u = filterForStep(span.du);
  const AxisFilter filter_v = filterForStep(span.dv);
  const std::int32_t coverage = row.coverage;
  std::byte* out = row.data + span.column * Traits::kPixelBytes;
  std::int32_t u = span.u;
  std::int32_t v = span.v;
  for (std::int64_t i = 0; i < span.count; ++i) {
    putPixel<Traits>(out, sampleInput<Traits>(input, u, v, filter_u, filter_v), coverage);
    u = wrapAdd(u, span.du);
    v = wrapAdd(v, span.dv);
    out += Traits::kPixelBytes;
  }
}

// Whether an unwrapped position is within the 16.16 range and has both taps inside an axis of `size` pixels. A whole
// position, which reads only one tap, is treated the same.
constexpr bool isInterior(std::int64_t position, const AxisFilter& filter, std::int32_t size) {
  return position >= 0 && position <= std::numeric_limits<std::int32_t>::max() &&
         (position >> 16) + filter.second_tap < size;
}

// A part of a span, in pixels from its first: [first, end).
struct InteriorRange {
  std::int64_t first;
  std::int64_t end;
};

// The part of a span with all taps inside the input. Unwrapped positions are linear along the span, so all pixels
// between two interior pixels are interior too: it is enough to trim both ends until the first and the last pixel are
// interior.
constexpr InteriorRange findInterior(const InputView& input, const PixelSpan& span) {
  const AxisFilter filter_u = filterForStep(span.du);
  const AxisFilter filter_v = filterForStep(span.dv);
  const auto is_interior = [&](std::int64_t pixel) {
    return isInterior(span.u + span.du * pixel, filter_u, input.width) &&
           isInterior(span.v + span.dv * pixel, filter_v, input.height);
  };
  InteriorRange range{0, span.count};
  while (range.first < range.end && !is_interior(range.first)) {
    ++range.first;
  }
  while (range.first < range.end && !is_interior(range.end - 1)) {
    --range.end;
  }
  return range;
}

// A row's sample where both taps lie inside the input.
template <typename Traits, bool kBoxFilter>
typename Traits::Unpacked sampleInterior(const std::byte* address, std::ptrdiff_t tap_bytes, std::int32_t position) {
  const typename Traits::Unpacked first = Traits::load(address);
  if constexpr (kBoxFilter) {
    return fixedFraction(position) == 0 ? first : Traits::average(first, Traits::load(address + tap_bytes));
  } else {
    return Traits::mix(first, Traits::load(address + tap_bytes), position);
  }
}

// The sample at (u, v) where all taps lie inside the input and one axis or both are box-filtered. The second taps'
// distances are in bytes.
template <typename Traits, bool kBoxFilterU, bool kBoxFilterV>
typename Traits::Packed boxFilterTexels(const std::byte* address, std::ptrdiff_t tap_u, std::ptrdiff_t tap_v,
                                        std::int32_t u, std::int32_t v) {
  const typename Traits::Unpacked first = sampleInterior<Traits, kBoxFilterU>(address, tap_u, u);
  if (kBoxFilterV && fixedFraction(v) == 0) {
    return Traits::pack(first);
  }
  const typename Traits::Unpacked second = sampleInterior<Traits, kBoxFilterU>(address + tap_v, tap_u, u);
  return Traits::pack(kBoxFilterV ? Traits::average(first, second) : Traits::mix(first, second, v));
}

// Fills pixels whose taps all lie inside the input. Fields are copied to locals because the compiler must assume that
// stores to the output may alias them.
//
// Prefetches what the next output row will read: across a turned source the reads of a row jump between cache lines
// too irregularly for the processor's own prefetching. Prefetched addresses may lie outside the input.
template <typename Traits, bool kBoxFilterU, bool kBoxFilterV>
void fillInterior(const InputView& input, const PixelSpan& span, const OutputRow& row) {
  const std::byte* const data = input.data;
  const std::ptrdiff_t row_bytes = input.row_bytes;
  const std::ptrdiff_t tap_u = filterForStep(span.du).second_tap * Traits::kPixelBytes;
  const std::ptrdiff_t tap_v = filterForStep(span.dv).second_tap * Traits::rowStep(input.row_bytes);
  const std::int32_t du = span.du;
  const std::int32_t dv = span.dv;
  const std::ptrdiff_t bytes_ahead = span.rows_ahead * row_bytes;
  const std::int32_t coverage = row.coverage;
  std::int32_t u = span.u;
  std::int32_t v = span.v;
  std::byte* out = row.data + span.column * Traits::kPixelBytes;
  const std::byte* const end = out + span.count * Traits::kPixelBytes;
  for (; out != end; out += Traits::kPixelBytes) {
    const std::byte* const address = data + fixedFloor(v) * row_bytes + fixedFloor(u) * Traits::kPixelBytes;
    __builtin_prefetch(moveAddress(address, bytes_ahead));
    typename Traits::Packed sample;
    if constexpr (kBoxFilterU || kBoxFilterV) {
      sample = boxFilterTexels<Traits, kBoxFilterU, kBoxFilterV>(address, tap_u, tap_v, u, v);
    } else {
      sample = bilerpTexels<Traits>(address, address + tap_v, u, v);
    }
    if (coverage == 0) {
      storeAs(out, sample);
    } else {
      putPixel<Traits>(out, Traits::unpack(sample), coverage);
    }
    u = wrapAdd(u, du);
    v = wrapAdd(v, dv);
  }
}

// Fills a span of whole pixels. The part inside the input, usually most of it, is determined once, so that its pixels
// need no clamping and no border cases.
template <typename Traits>
void fillSpan(const InputView& input, const PixelSpan& span, const OutputRow& row) {
  if (span.count == 0) {
    return;
  }
  const InteriorRange interior = findInterior(input, span);
  PixelSpan before = span;
  before.count = interior.first;
  fillClamped<Traits>(input, before, row);

  PixelSpan inside = stepSpan(span, interior.first);
  inside.count = interior.end - interior.first;
  const bool box_u = filterForStep(span.du).box_filter;
  const bool box_v = filterForStep(span.dv).box_filter;
  if (box_u && box_v) {
    fillInterior<Traits, true, true>(input, inside, row);
  } else if (box_u) {
    fillInterior<Traits, true, false>(input, inside, row);
  } else if (box_v) {
    fillInterior<Traits, false, true>(input, inside, row);
  } else {
    fillInterior<Traits, false, false>(input, inside, row);
  }

  fillClamped<Traits>(input, stepSpan(span, interior.end), row);
}
