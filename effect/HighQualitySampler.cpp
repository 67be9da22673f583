#include "effect/HighQualitySampler.h"

#include <cmath>

#include "effect/Int32Arithmetic.h"
#include "effect/PerspectiveInfo.h"

namespace {

constexpr std::int32_t kSmallestExtent = 65536;  // 1 input pixel
constexpr std::int32_t kLargestExtent = 16 * 65536;

// The homogeneous coordinates of an output point, u and v in units of the output's size.
struct Homogeneous {
  double u;
  double v;
  double w;

  void operator+=(const Homogeneous& step) {
    u += step.u;
    v += step.v;
    w += step.w;
  }
  void operator-=(const Homogeneous& step) {
    u -= step.u;
    v -= step.v;
    w -= step.w;
  }
};

// 16.16, halves rounded away from zero.
std::int32_t FixedFromDouble(double value) {
  const double scaled = value * 65536.0;
  return Int32FromDouble(value < 0.0 ? scaled - 0.5 : scaled + 0.5);
}

// Half the extent, as a 16.16 radius between 0.5 and 8 pixels.
std::int32_t RadiusFromExtent(double extent) {
  return M_Min(M_Max(FixedFromDouble(extent), kSmallestExtent), kLargestExtent) >> 1;
}

// Grows the extents to the neighbour's distance from the centre.
void MeasureNeighbour(const Homogeneous& neighbour, double cx, double cy, double* extent_x, double* extent_y) {
  const double distance_x = std::abs(neighbour.u / neighbour.w - cx);
  const double distance_y = std::abs(neighbour.v / neighbour.w - cy);
  *extent_x = M_Max(*extent_x, distance_x);
  *extent_y = M_Max(*extent_y, distance_y);
}

// Sizes the box by walking `at` round the pixel's neighbours and back; the walk's rounding stays in `at`.
void MeasureFootprint(const KZFX_PerspectiveInfo& info, const Homogeneous& right, const Homogeneous& down, double cx,
                      double cy, Homogeneous* at, PF_SampleParams* params) {
  *at += right;
  double extent_x = std::abs(at->u / at->w - cx);
  double extent_y = std::abs(at->v / at->w - cy);
  *at += down;
  MeasureNeighbour(*at, cx, cy, &extent_x, &extent_y);
  *at -= right;
  MeasureNeighbour(*at, cx, cy, &extent_x, &extent_y);
  *at -= down;

  params->x_radius = RadiusFromExtent(extent_x * info.x_scale);
  params->y_radius = RadiusFromExtent(extent_y * info.y_scale);
  const double product = static_cast<double>(params->x_radius) * static_cast<double>(params->y_radius);
  params->area = Int32FromDouble(product * (1.0 / 65536.0)) * 4;
}

template <typename Pixel>
void TraceRow(const KZFX_PerspectiveInfo& info, std::int32_t x, std::int32_t y, Pixel* out) {
  const PF_AreaSampler<Pixel> sample = AreaSamplerOf<Pixel>(info);
  const auto& m = info.quad_to_unit.m;
  const double py = y;
  const bool row_rejected = py > info.bound_bottom || py < info.bound_top;

  const Homogeneous right{m[0][0] * info.out_width_d, m[0][1] * info.out_height_d, m[0][2]};
  const Homogeneous down{m[1][0] * info.out_width_d, m[1][1] * info.out_height_d, m[1][2]};
  Homogeneous at{info.out_width_d * (m[0][0] * x + m[1][0] * py + m[2][0]),
                 info.out_height_d * (m[0][1] * x + m[1][1] * py + m[2][1]), m[0][2] * x + m[1][2] * py + m[2][2]};

  PF_SampleParams params{};
  params.source = info.input_world;
  Pixel working{};
  for (std::int64_t px = x; px < std::int64_t{info.out_width} + x; ++px, ++out) {
    if (row_rejected) {
      *out = Pixel{};
      continue;
    }
    // The step comes before the evaluation; the driver's corner points are shifted by a pixel to make up for it.
    at += right;
    const double pxd = static_cast<double>(px);
    if (pxd > info.bound_right || pxd < info.bound_left) {
      *out = Pixel{};
      continue;
    }
    if (at.w == 0.0 || at.w + down.w + right.w == 0.0 || at.w + right.w == 0.0 || at.w + down.w == 0.0) {
      working = Pixel{};
    } else {
      const double cx = at.u / at.w;
      const double cy = at.v / at.w;
      MeasureFootprint(info, right, down, cx, cy, &at, &params);
      sample(info.effect_ref, FixedFromDouble(cx * info.x_scale), FixedFromDouble(cy * info.y_scale), &params,
             &working);
    }
    *out = working;
  }
}

}  // namespace

std::int32_t KZFX_TracePointHi(void* info, std::int32_t x, std::int32_t y, PF_Pixel8* /*in*/, PF_Pixel8* out) {
  TraceRow(*static_cast<const KZFX_PerspectiveInfo*>(info), x, y, out);
  return ERR_NONE;
}

std::int32_t KZFX_TracePointHi16(void* info, std::int32_t x, std::int32_t y, PF_Pixel16* /*in*/, PF_Pixel16* out) {
  TraceRow(*static_cast<const KZFX_PerspectiveInfo*>(info), x, y, out);
  return ERR_NONE;
}

std::int32_t KZFX_TracePointHiFloat(void* info, std::int32_t x, std::int32_t y, PF_PixelFloat* /*in*/,
                                    PF_PixelFloat* out) {
  TraceRow(*static_cast<const KZFX_PerspectiveInfo*>(info), x, y, out);
  return ERR_NONE;
}
