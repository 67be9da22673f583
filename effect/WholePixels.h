// Drawing a run of whole pixels: most of a run lies so far inside the input that neither clamps nor border cases can
// arise, which is told once for the run instead of for every pixel.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "effect/FixedPoint.h"
#include "effect/Int32Arithmetic.h"
#include "effect/PixelSampling.h"
#include "effect/PixelSquare.h"

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
constexpr PixelRun StepRun(const PixelRun& run, std::int64_t pixels) {
  const auto steps = static_cast<std::int32_t>(static_cast<std::uint32_t>(pixels));
  return {WrapAdd(run.u, WrapMul(run.du, steps)),
          WrapAdd(run.v, WrapMul(run.dv, steps)),
          run.du,
          run.dv,
          run.count - pixels,
          run.rows_ahead};
}

// Mixes a sample into a row that is partly covered, or replaces the pixel in one that is wholly covered (cover 0).
template <typename Family>
void PutPixel(std::byte* address, const typename Family::Wide& sample, std::int32_t cover) {
  Family::Store(address, cover == 0 ? sample : Family::Mix(Family::Load(address), sample, cover));
}

// The run pixel by pixel, at any position.
template <typename Family>
void DrawBorderPixels(const InputView& input, const PixelRun& run, std::int32_t cover, std::byte* out) {
  const AxisFilter filter_u = FilterForStep(run.du);
  const AxisFilter filter_v = FilterForStep(run.dv);
  std::int32_t u = run.u;
  std::int32_t v = run.v;
  for (std::int64_t i = 0; i < run.count; ++i) {
    PutPixel<Family>(out, SampleInput<Family>(input, u, v, filter_u, filter_v), cover);
    u = WrapAdd(u, run.du);
    v = WrapAdd(v, run.dv);
    out += Family::kPixelBytes;
  }
}

// A row's sample where the pixel and its partner lie inside the input.
template <typename Family, bool kAverages>
typename Family::Wide SampleInterior(const std::byte* address, std::ptrdiff_t partner_bytes, std::int32_t position) {
  const typename Family::Wide first = Family::Load(address);
  if constexpr (kAverages) {
    return FixedFraction(position) == 0 ? first : Family::Average(first, Family::Load(address + partner_bytes));
  } else {
    return Family::Mix(first, Family::Load(address + partner_bytes), position);
  }
}

// The sample at (u, v) where all pixels that it may need lie inside the input; the partners' distances are in bytes.
template <typename Family, bool kAveragesU, bool kAveragesV>
typename Family::Word SampleSquare(const std::byte* address, std::ptrdiff_t partner_u, std::ptrdiff_t partner_v,
                                   std::int32_t u, std::int32_t v) {
  if constexpr (!kAveragesU && !kAveragesV) {
    return MixSquare<Family>(address, address + partner_v, u, v);
  } else {
    const typename Family::Wide first = SampleInterior<Family, kAveragesU>(address, partner_u, u);
    if (kAveragesV && FixedFraction(v) == 0) {
      return Family::Gather(first);
    }
    const typename Family::Wide second = SampleInterior<Family, kAveragesU>(address + partner_v, partner_u, u);
    return Family::Gather(kAveragesV ? Family::Average(first, second) : Family::Mix(first, second, v));
  }
}

// A run whose pixels and partners all lie inside the input, with the filters of its steps. The input's fields are kept
// in locals: the pixels written might, for all the compiler knows, be they.
//
// Meanwhile the processor fetches what the next output row will read, which may lie outside: rows cut across a turned
// source's rows too often for it to foresee that.
template <typename Family, bool kAveragesU, bool kAveragesV>
void DrawInteriorPixels(const InputView& input, const PixelRun& run, std::int32_t cover, std::byte* out) {
  const std::byte* const data = input.data;
  const std::ptrdiff_t row_bytes = input.row_bytes;
  const std::ptrdiff_t partner_u = FilterForStep(run.du).partner * Family::kPixelBytes;
  const std::ptrdiff_t partner_v = FilterForStep(run.dv).partner * Family::RowStep(input.row_bytes);
  const std::int32_t du = run.du;
  const std::int32_t dv = run.dv;
  const std::ptrdiff_t bytes_ahead = run.rows_ahead * row_bytes;
  std::int32_t u = run.u;
  std::int32_t v = run.v;
  const std::byte* const end = out + run.count * Family::kPixelBytes;
  for (; out != end; out += Family::kPixelBytes) {
    const std::byte* const address = data + FixedFloor(v) * row_bytes + FixedFloor(u) * Family::kPixelBytes;
    __builtin_prefetch(MoveAddress(address, bytes_ahead));
    const typename Family::Word sample =
        SampleSquare<Family, kAveragesU, kAveragesV>(address, partner_u, partner_v, u, v);
    if (cover == 0) {
      StoreAs(out, sample);
    } else {
      PutPixel<Family>(out, Family::Spread(sample), cover);
    }
    u = WrapAdd(u, du);
    v = WrapAdd(v, dv);
  }
}

// Whether a position, before it wraps, needs no wrapping and has its pixel and partner inside an axis of `size` pixels;
// a whole position counts alike.
constexpr bool IsInterior(std::int64_t position, const AxisFilter& filter, std::int32_t size) {
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
constexpr InteriorRange FindInterior(const InputView& input, const PixelRun& run) {
  const AxisFilter filter_u = FilterForStep(run.du);
  const AxisFilter filter_v = FilterForStep(run.dv);
  const auto is_interior = [&](std::int64_t pixel) {
    return IsInterior(run.u + run.du * pixel, filter_u, input.width) &&
           IsInterior(run.v + run.dv * pixel, filter_v, input.height);
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

// Draws a run of pixels from `out` on; `cover` as in PutPixel.
template <typename Family>
void DrawWholePixels(const InputView& input, const PixelRun& run, std::int32_t cover, std::byte* out) {
  const InteriorRange interior = FindInterior(input, run);
  PixelRun before = run;
  before.count = interior.first;
  DrawBorderPixels<Family>(input, before, cover, out);

  PixelRun inside = StepRun(run, interior.first);
  inside.count = interior.end - interior.first;
  std::byte* const inside_out = out + interior.first * Family::kPixelBytes;
  const bool averages_u = FilterForStep(run.du).averages;
  const bool averages_v = FilterForStep(run.dv).averages;
  if (averages_u && averages_v) {
    DrawInteriorPixels<Family, true, true>(input, inside, cover, inside_out);
  } else if (averages_u) {
    DrawInteriorPixels<Family, true, false>(input, inside, cover, inside_out);
  } else if (averages_v) {
    DrawInteriorPixels<Family, false, true>(input, inside, cover, inside_out);
  } else {
    DrawInteriorPixels<Family, false, false>(input, inside, cover, inside_out);
  }

  DrawBorderPixels<Family>(input, StepRun(run, interior.end), cover, out + interior.end * Family::kPixelBytes);
}
