// Drawing a run of whole pixels: most of a run lies so far inside the input that neither clamps nor border cases can
// arise, which is told once for the run instead of for every pixel.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "effect/FixedPoint.h"
#include "effect/Int32Arithmetic.h"
#include "effect/bilinear/PixelSampling.h"
#include "effect/bilinear/PixelSquare.h"

// Pixels side by side in an output row, and the source positions that they are sampled at, 16.16, which wrap.
struct PixelRun {
  std::int32_t u;  // the first pixel's
  std::int32_t v;
  std::int32_t du;  // the change per pixel
  std::int32_t dv;
  std::int64_t count;
  std::int64_t rows_ahead;  // where the next output row reads: so many source rows below
};

// The run from `pixels` pixels on: so many steps at once, wrapping as they would one by one.
constexpr PixelRun stepRun(const PixelRun& run, std::int64_t pixels) {
  const auto steps = static_cast<std::int32_t>(static_cast<std::uint32_t>(pixels));
  return {wrapAdd(run.u, wrapMul(run.du, steps)),
          wrapAdd(run.v, wrapMul(run.dv, steps)),
          run.du,
          run.dv,
          run.count - pixels,
          run.rows_ahead};
}

// Mixes a sample into a row that is partly covered, or replaces the pixel in one that is wholly covered (cover 0).
template <typename Family>
void putPixel(std::byte* address, const typename Family::Wide& sample, std::int32_t cover) {
  Family::store(address, cover == 0 ? sample : Family::mix(Family::load(address), sample, cover));
}

// The run pixel by pixel, at any position.
template <typename Family>
void drawBorderPixels(const InputView& input, const PixelRun& run, std::int32_t cover, std::byte* out) {
  const AxisFilter filter_u = filterForStep(run.du);
  const AxisFilter filter_v = filterForStep(run.dv);
  std::int32_t u = run.u;
  std::int32_t v = run.v;
  for (std::int64_t i = 0; i < run.count; ++i) {
    putPixel<Family>(out, sampleInput<Family>(input, u, v, filter_u, filter_v), cover);
    u = wrapAdd(u, run.du);
    v = wrapAdd(v, run.dv);
    out += Family::kPixelBytes;
  }
}

// A row's sample where the pixel and its partner lie inside the input.
template <typename Family, bool kAverages>
typename Family::Wide sampleInterior(const std::byte* address, std::ptrdiff_t partner_bytes, std::int32_t position) {
  const typename Family::Wide first = Family::load(address);
  if constexpr (kAverages) {
    return fixedFraction(position) == 0 ? first : Family::average(first, Family::load(address + partner_bytes));
  } else {
    return Family::mix(first, Family::load(address + partner_bytes), position);
  }
}

// The sample at (u, v) where all pixels that it may need lie inside the input; the partners' distances are in bytes.
template <typename Family, bool kAveragesU, bool kAveragesV>
typename Family::Word sampleSquare(const std::byte* address, std::ptrdiff_t partner_u, std::ptrdiff_t partner_v,
                                   std::int32_t u, std::int32_t v) {
  if constexpr (!kAveragesU && !kAveragesV) {
    return mixSquare<Family>(address, address + partner_v, u, v);
  } else {
    const typename Family::Wide first = sampleInterior<Family, kAveragesU>(address, partner_u, u);
    if (kAveragesV && fixedFraction(v) == 0) {
      return Family::gather(first);
    }
    const typename Family::Wide second = sampleInterior<Family, kAveragesU>(address + partner_v, partner_u, u);
    return Family::gather(kAveragesV ? Family::average(first, second) : Family::mix(first, second, v));
  }
}

// A run whose pixels and partners all lie inside the input, with the filters of its steps. The input's fields are kept
// in locals: the pixels written might, for all the compiler knows, be they.
//
// Meanwhile the processor fetches what the next output row will read, which may lie outside: rows cut across a turned
// source's rows too often for it to foresee that.
template <typename Family, bool kAveragesU, bool kAveragesV>
void drawInteriorPixels(const InputView& input, const PixelRun& run, std::int32_t cover, std::byte* out) {
  const std::byte* const data = input.data;
  const std::ptrdiff_t row_bytes = input.row_bytes;
  const std::ptrdiff_t partner_u = filterForStep(run.du).partner * Family::kPixelBytes;
  const std::ptrdiff_t partner_v = filterForStep(run.dv).partner * Family::rowStep(input.row_bytes);
  const std::int32_t du = run.du;
  const std::int32_t dv = run.dv;
  const std::ptrdiff_t bytes_ahead = run.rows_ahead * row_bytes;
  std::int32_t u = run.u;
  std::int32_t v = run.v;
  const std::byte* const end = out + run.count * Family::kPixelBytes;
  for (; out != end; out += Family::kPixelBytes) {
    const std::byte* const address = data + fixedFloor(v) * row_bytes + fixedFloor(u) * Family::kPixelBytes;
    __builtin_prefetch(moveAddress(address, bytes_ahead));
    const typename Family::Word sample =
        sampleSquare<Family, kAveragesU, kAveragesV>(address, partner_u, partner_v, u, v);
    if (cover == 0) {
      storeAs(out, sample);
    } else {
      putPixel<Family>(out, Family::spread(sample), cover);
    }
    u = wrapAdd(u, du);
    v = wrapAdd(v, dv);
  }
}

// Whether a position, before it wraps, needs no wrapping and has its pixel and partner inside an axis of `size` pixels;
// a whole position counts alike.
constexpr bool isInterior(std::int64_t position, const AxisFilter& filter, std::int32_t size) {
  return position >= 0 && position <= std::numeric_limits<std::int32_t>::max() &&
         (position >> 16) + filter.partner < size;
}

// The part of a run that is drawn as interior pixels: [first, end).
struct InteriorRange {
  std::int64_t first;
  std::int64_t end;
};

// Positions that do not wrap change evenly along the run, so the interior is what lies between two interior pixels: the
// run is cut at both ends until its first and last are.
constexpr InteriorRange findInterior(const InputView& input, const PixelRun& run) {
  const AxisFilter filter_u = filterForStep(run.du);
  const AxisFilter filter_v = filterForStep(run.dv);
  const auto is_interior = [&](std::int64_t pixel) {
    return isInterior(run.u + run.du * pixel, filter_u, input.width) &&
           isInterior(run.v + run.dv * pixel, filter_v, input.height);
  };
  InteriorRange range{0, run.count};
  while (range.first < range.end && !is_interior(range.first)) {
    ++range.first;
  }
  while (range.first < range.end && !is_interior(range.end - 1)) {
    --range.end;
  }
  return range;
}

// Draws a run of pixels from `out` on; `cover` as in putPixel.
template <typename Family>
void drawWholePixels(const InputView& input, const PixelRun& run, std::int32_t cover, std::byte* out) {
  const InteriorRange interior = findInterior(input, run);
  PixelRun before = run;
  before.count = interior.first;
  drawBorderPixels<Family>(input, before, cover, out);

  PixelRun inside = stepRun(run, interior.first);
  inside.count = interior.end - interior.first;
  std::byte* const inside_out = out + interior.first * Family::kPixelBytes;
  const bool averages_u = filterForStep(run.du).averages;
  const bool averages_v = filterForStep(run.dv).averages;
  if (averages_u && averages_v) {
    drawInteriorPixels<Family, true, true>(input, inside, cover, inside_out);
  } else if (averages_u) {
    drawInteriorPixels<Family, true, false>(input, inside, cover, inside_out);
  } else if (averages_v) {
    drawInteriorPixels<Family, false, true>(input, inside, cover, inside_out);
  } else {
    drawInteriorPixels<Family, false, false>(input, inside, cover, inside_out);
  }

  drawBorderPixels<Family>(input, stepRun(run, interior.end), cover, out + interior.end * Family::kPixelBytes);
}
