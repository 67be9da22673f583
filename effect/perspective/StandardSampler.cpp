#include "effect/perspective/StandardSampler.h"

#include "effect/perspective/PerspectiveInfo.h"
#include "effect/perspective/RowTrace.h"

namespace {

constexpr std::int32_t kHalfPixel = 32768;
constexpr std::int32_t kOneSquarePixel = 65536;

// How an axis of the output is walked: in units of this length, and what takes them to input pixels.
struct AxisUnits {
  double length;
  double to_input;
};

// Normally the output's size. Positions across a world larger than 16.16 holds would run over, so that such an axis is
// walked in input pixels at once.
AxisUnits unitsAlong(double out_length, double scale) {
  return out_length > 32767.0 ? AxisUnits{out_length * scale, 1.0} : AxisUnits{out_length, scale};
}

// The coordinates u and v in 16.16 units of the output's size, and one box for all pixels.
struct StandardQuality {
  static RowWalk walkFrom(const KZFX_PerspectiveInfo& info, std::int32_t x, std::int32_t y, InputScale* scale) {
    const auto& m = info.quad_to_unit.m;
    const AxisUnits across = unitsAlong(info.out_width_d, info.x_scale);
    const AxisUnits down = unitsAlong(info.out_height_d, info.y_scale);
    *scale = {across.to_input, down.to_input};
    return {
        {(65536.0 * across.length) * (m[0][0] * x + m[1][0] * y + m[2][0]), 65536.0 * (m[0][0] * across.length), 0.0},
        {(65536.0 * down.length) * (m[0][1] * x + m[1][1] * y + m[2][1]), 65536.0 * (m[0][1] * down.length), 0.0},
        {m[0][2] * x + m[1][2] * y + m[2][2], m[0][2], 0.0}};
  }

  static PF_SampleParams firstParams(const KZFX_PerspectiveInfo& info) {
    return {kHalfPixel, kHalfPixel, kOneSquarePixel, info.input_world, {}};
  }

  static bool computeBlock(const RowBlockFunctions& functions, RowWalk* walk, const InputScale& scale, int count,
                           PixelBlock* block) {
    return functions.positions(walk, scale, count, block);
  }

  static void setBox(const SampleBoxSize& /*box*/, PF_SampleParams* /*params*/) {}
};

}  // namespace

template <typename Pixel>
void traceStandardRow(const void* info, std::int32_t x, std::int32_t y, Pixel* out,
                      const RowBlockFunctions& functions) {
  traceRow<StandardQuality>(*static_cast<const KZFX_PerspectiveInfo*>(info), x, y, out, functions);
}
template void traceStandardRow(const void*, std::int32_t, std::int32_t, PF_Pixel8*, const RowBlockFunctions&);
template void traceStandardRow(const void*, std::int32_t, std::int32_t, PF_Pixel16*, const RowBlockFunctions&);
template void traceStandardRow(const void*, std::int32_t, std::int32_t, PF_PixelFloat*, const RowBlockFunctions&);

std::int32_t KZFX_TracePointFPU(void* info, std::int32_t x, std::int32_t y, PF_Pixel8* /*in*/, PF_Pixel8* out) {
  traceStandardRow(info, x, y, out, bestRowBlockFunctions());
  return ERR_NONE;
}

std::int32_t KZFX_TracePointFPU16(void* info, std::int32_t x, std::int32_t y, PF_Pixel16* /*in*/, PF_Pixel16* out) {
  traceStandardRow(info, x, y, out, bestRowBlockFunctions());
  return ERR_NONE;
}

std::int32_t KZFX_TracePointFPUFloat(void* info, std::int32_t x, std::int32_t y, PF_PixelFloat* /*in*/,
                                     PF_PixelFloat* out) {
  traceStandardRow(info, x, y, out, bestRowBlockFunctions());
  return ERR_NONE;
}
