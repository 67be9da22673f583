#include "effect/StandardSampler.h"

#include "effect/Int32Arithmetic.h"
#include "effect/PerspectiveInfo.h"

namespace {

constexpr std::int32_t kHalfPixel = 32768;
constexpr std::int32_t kOneSquarePixel = 65536;

// A 16.16 position in the input: truncated once in output-scaled units and once more in input pixels.
std::int32_t InputPosition(double numerator, double divisor, double scale) {
  return Int32FromDouble(Int32FromDouble(numerator / divisor) * scale);
}

template <typename Pixel>
void TraceRow(const KZFX_PerspectiveInfo& info, std::int32_t x, std::int32_t y, Pixel* out) {
  const PF_AreaSampler<Pixel> sample = AreaSamplerOf<Pixel>(info);
  const auto& m = info.quad_to_unit.m;
  const double py = y;
  const bool row_rejected = py > info.bound_bottom || py < info.bound_top;

  const double du = 65536.0 * (m[0][0] * info.out_width_d);
  const double dv = 65536.0 * (m[0][1] * info.out_height_d);
  const double dw = m[0][2];
  double u = (65536.0 * info.out_width_d) * (m[0][0] * x + m[1][0] * py + m[2][0]);
  double v = (65536.0 * info.out_height_d) * (m[0][1] * x + m[1][1] * py + m[2][1]);
  double w = m[0][2] * x + m[1][2] * py + m[2][2];

  PF_SampleParams params{};
  params.x_radius = kHalfPixel;
  params.y_radius = kHalfPixel;
  params.area = kOneSquarePixel;
  params.source = info.input_world;
  Pixel working{};
  for (std::int64_t px = x; px < std::int64_t{info.out_width} + x; ++px, ++out) {
    if (row_rejected) {
      *out = Pixel{};
      continue;
    }
    // The step comes before the evaluation; the driver's corner points are shifted by a pixel to make up for it.
    u += du;
    v += dv;
    w += dw;
    const double pxd = static_cast<double>(px);
    if (pxd > info.bound_right || pxd < info.bound_left) {
      *out = Pixel{};
      continue;
    }
    if (w == 0.0) {
      working = Pixel{};
    } else {
      sample(info.effect_ref, InputPosition(u, w, info.x_scale), InputPosition(v, w, info.y_scale), &params, &working);
    }
    *out = working;
  }
}

}  // namespace

std::int32_t KZFX_TracePointFPU(void* info, std::int32_t x, std::int32_t y, PF_Pixel8* /*in*/, PF_Pixel8* out) {
  TraceRow(*static_cast<const KZFX_PerspectiveInfo*>(info), x, y, out);
  return ERR_NONE;
}

std::int32_t KZFX_TracePointFPU16(void* info, std::int32_t x, std::int32_t y, PF_Pixel16* /*in*/, PF_Pixel16* out) {
  TraceRow(*static_cast<const KZFX_PerspectiveInfo*>(info), x, y, out);
  return ERR_NONE;
}

std::int32_t KZFX_TracePointFPUFloat(void* info, std::int32_t x, std::int32_t y, PF_PixelFloat* /*in*/,
                                     PF_PixelFloat* out) {
  TraceRow(*static_cast<const KZFX_PerspectiveInfo*>(info), x, y, out);
  return ERR_NONE;
}
