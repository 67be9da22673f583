#include "effect/perspective/RowSamplers.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "effect/FixedPoint.h"
#include "effect/perspective/IncrementalMap.h"
#include "effect/perspective/PixelBatch.h"
#include "platform/ClearPixels.h"

namespace {

// ---- The part of a row inside the reject box -----------------------------------------------------------------------

bool rowIsRejected(const KZFX_PerspectiveInfo& info, std::int32_t y) {
  return y > info.bound_bottom || y < info.bound_top;
}

// The columns [first, end).
struct ColumnRange {
  std::int64_t first;
  std::int64_t end;
};

// The columns of [first, end) inside the reject box; a NaN bound rejects nothing.
ColumnRange acceptedColumns(const KZFX_PerspectiveInfo& info, std::int64_t first, std::int64_t end) {
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

// Makes `count` pixels of a row of the output transparent.
template <typename Pixel>
void clearPixels(const KZFX_PerspectiveInfo& info, Pixel* out, std::int64_t count) {
  const std::uint64_t pixels = static_cast<std::uint64_t>(info.out_width) * static_cast<std::uint32_t>(info.out_height);
  clearBytes(out, static_cast<std::size_t>(count) * sizeof(Pixel), storePolicyFor(pixels * sizeof(Pixel)));
}

// ---- The incremental map at output pixel (x, y), which steps before it is evaluated --------------------------------

// The unit in which the map is evaluated along an axis of the output: u or v times `length`, which `to_input` scales to
// input pixels.
struct AxisUnits {
  double length;
  double to_input;
};

// Normally output pixels. In an output larger than 16.16 can express, positions would overflow, so such an axis is
// measured directly in input pixels.
AxisUnits unitsAlong(double out_length, double scale) {
  return out_length > 32767.0 ? AxisUnits{out_length * scale, 1.0} : AxisUnits{out_length, scale};
}

// In output pixels, as 16.16.
IncrementalMap standardMap(const KZFX_PerspectiveInfo& info, std::int32_t x, std::int32_t y, InputScale* scale) {
  const auto& m = info.quad_to_unit.m;
  const AxisUnits across = unitsAlong(info.out_width_d, info.x_scale);
  const AxisUnits down = unitsAlong(info.out_height_d, info.y_scale);
  constexpr double kUnit = kFixedOne;
  *scale = {across.to_input, down.to_input};
  return {{(kUnit * across.length) * (m[0][0] * x + m[1][0] * y + m[2][0]), kUnit * (m[0][0] * across.length), 0.0},
          {(kUnit * down.length) * (m[0][1] * x + m[1][1] * y + m[2][1]), kUnit * (m[0][1] * down.length), 0.0},
          {m[0][2] * x + m[1][2] * y + m[2][2], m[0][2], 0.0}};
}

// In output pixels.
IncrementalMap highQualityMap(const KZFX_PerspectiveInfo& info, std::int32_t x, std::int32_t y, InputScale* scale) {
  const auto& m = info.quad_to_unit.m;
  const double width = info.out_width_d;
  const double height = info.out_height_d;
  *scale = {info.x_scale, info.y_scale};
  return {{width * (m[0][0] * x + m[1][0] * y + m[2][0]), m[0][0] * width, m[1][0] * width},
          {height * (m[0][1] * x + m[1][1] * y + m[2][1]), m[0][1] * height, m[1][1] * height},
          {m[0][2] * x + m[1][2] * y + m[2][2], m[0][2], m[1][2]}};
}

// ---- Sampling ------------------------------------------------------------------------------------------------------

static_assert(offsetof(PF_SampleParams, x_radius) == offsetof(SampleBoxSize, x_radius) &&
              offsetof(PF_SampleParams, y_radius) == offsetof(SampleBoxSize, y_radius) &&
              offsetof(PF_SampleParams, area) == offsetof(SampleBoxSize, area) &&
              offsetof(PF_SampleParams, source) >= sizeof(SampleBoxSize));

// Samples a batch's pixels in order into `out`. The host's error codes are ignored: a pixel that the host does not
// write repeats the previous one, which is still in `working`.
template <SamplingQuality kQuality, bool kAnyAtInfinity, typename Pixel>
void sampleBatch(const KZFX_PerspectiveInfo& info, const PixelBatch& batch, int count, PF_SampleParams* params,
                 Pixel* working, Pixel* out) {
  const PF_AreaSampler<Pixel> sample = areaSamplerOf<Pixel>(info);
  void* const effect_ref = info.effect_ref;
  for (int i = 0; i < count; ++i) {
    if (kAnyAtInfinity && batch.at_infinity[i]) {
      *working = Pixel{};
    } else {
      if constexpr (kQuality == SamplingQuality::High) {
        std::memcpy(params, &batch.box[i], sizeof batch.box[i]);
      }
      sample(effect_ref, batch.x[i], batch.y[i], params, working);
    }
    out[i] = *working;
  }
}

// Draws the accepted columns of row y. Each batch is computed before the previous one is sampled; otherwise the first
// samples of a batch would have to wait for its computation.
template <SamplingQuality kQuality, typename Pixel>
void sampleColumns(const KZFX_PerspectiveInfo& info, const ColumnRange& columns, std::int32_t x, std::int32_t y,
                   Pixel* out, const PixelBatchFunctions& functions) {
  constexpr bool kIsHigh = kQuality == SamplingQuality::High;
  InputScale scale;
  IncrementalMap map = kIsHigh ? highQualityMap(info, x, y, &scale) : standardMap(info, x, y, &scale);
  advance(&map, static_cast<int>(columns.first - x));
  std::int64_t remaining = columns.end - columns.first;
  // A batch computes whole vectors.
  constexpr int kVectorPixels = 8;
  constexpr std::int64_t kMostWanted = 1 << 20;
  for (Stepper* stepper : {&map.u, &map.v, &map.w}) {
    stepper->wanted = static_cast<int>(std::min(remaining + kVectorPixels, kMostWanted));
  }

  PixelBatch batches[2];
  int counts[2];
  bool any_at_infinity[2];
  const auto compute = [&](int k) {
    counts[k] = static_cast<int>(std::min<std::int64_t>(remaining, kBatchPixels));
    any_at_infinity[k] = counts[k] > 0 && (kIsHigh ? functions.footprints(&map, scale, counts[k], &batches[k])
                                                   : functions.positions(&map, scale, counts[k], &batches[k]));
    remaining -= counts[k];
  };
  PF_SampleParams params{kFixedHalf, kFixedHalf, kFixedOne, info.input_world, {}};
  Pixel working{};
  compute(0);
  for (int k = 0; counts[k] > 0; out += counts[k], k = 1 - k) {
    compute(1 - k);
    if (any_at_infinity[k]) {
      sampleBatch<kQuality, true>(info, batches[k], counts[k], &params, &working, out);
    } else {
      sampleBatch<kQuality, false>(info, batches[k], counts[k], &params, &working, out);
    }
  }
}

}  // namespace

template <SamplingQuality kQuality, typename Pixel>
void traceRow(const KZFX_PerspectiveInfo& info, std::int32_t x, std::int32_t y, Pixel* out, InstructionSet set) {
  if (info.out_width <= 0) {
    return;
  }
  const std::int64_t row_end = std::int64_t{x} + info.out_width;
  const ColumnRange columns =
      rowIsRejected(info, y) ? ColumnRange{row_end, row_end} : acceptedColumns(info, x, row_end);
  clearPixels(info, out, columns.first - x);
  clearPixels(info, out + (columns.end - x), row_end - columns.end);
  if (columns.first < columns.end) {
    sampleColumns<kQuality>(info, columns, x, y, out + (columns.first - x), pixelBatchFunctions(set));
  }
}

template void traceRow<SamplingQuality::Standard>(const KZFX_PerspectiveInfo&, std::int32_t, std::int32_t, PF_Pixel8*,
                                                  InstructionSet);
template void traceRow<SamplingQuality::Standard>(const KZFX_PerspectiveInfo&, std::int32_t, std::int32_t, PF_Pixel16*,
                                                  InstructionSet);
template void traceRow<SamplingQuality::Standard>(const KZFX_PerspectiveInfo&, std::int32_t, std::int32_t,
                                                  PF_PixelFloat*, InstructionSet);
template void traceRow<SamplingQuality::High>(const KZFX_PerspectiveInfo&, std::int32_t, std::int32_t, PF_Pixel8*,
                                              InstructionSet);
template void traceRow<SamplingQuality::High>(const KZFX_PerspectiveInfo&, std::int32_t, std::int32_t, PF_Pixel16*,
                                              InstructionSet);
template void traceRow<SamplingQuality::High>(const KZFX_PerspectiveInfo&, std::int32_t, std::int32_t, PF_PixelFloat*,
                                              InstructionSet);

std::int32_t KZFX_TracePointFPU(void* info, std::int32_t x, std::int32_t y, PF_Pixel8* /*in*/, PF_Pixel8* out) {
  traceRow<SamplingQuality::Standard>(*static_cast<const KZFX_PerspectiveInfo*>(info), x, y, out,
                                      activeInstructionSet());
  return ERR_NONE;
}

std::int32_t KZFX_TracePointFPU16(void* info, std::int32_t x, std::int32_t y, PF_Pixel16* /*in*/, PF_Pixel16* out) {
  traceRow<SamplingQuality::Standard>(*static_cast<const KZFX_PerspectiveInfo*>(info), x, y, out,
                                      activeInstructionSet());
  return ERR_NONE;
}

std::int32_t KZFX_TracePointFPUFloat(void* info, std::int32_t x, std::int32_t y, PF_PixelFloat* /*in*/,
                                     PF_PixelFloat* out) {
  traceRow<SamplingQuality::Standard>(*static_cast<const KZFX_PerspectiveInfo*>(info), x, y, out,
                                      activeInstructionSet());
  return ERR_NONE;
}

std::int32_t KZFX_TracePointHi(void* info, std::int32_t x, std::int32_t y, PF_Pixel8* /*in*/, PF_Pixel8* out) {
  traceRow<SamplingQuality::High>(*static_cast<const KZFX_PerspectiveInfo*>(info), x, y, out, activeInstructionSet());
  return ERR_NONE;
}

std::int32_t KZFX_TracePointHi16(void* info, std::int32_t x, std::int32_t y, PF_Pixel16* /*in*/, PF_Pixel16* out) {
  traceRow<SamplingQuality::High>(*static_cast<const KZFX_PerspectiveInfo*>(info), x, y, out, activeInstructionSet());
  return ERR_NONE;
}

std::int32_t KZFX_TracePointHiFloat(void* info, std::int32_t x, std::int32_t y, PF_PixelFloat* /*in*/,
                                    PF_PixelFloat* out) {
  traceRow<SamplingQuality::High>(*static_cast<const KZFX_PerspectiveInfo*>(info), x, y, out, activeInstructionSet());
  return ERR_NONE;
}
