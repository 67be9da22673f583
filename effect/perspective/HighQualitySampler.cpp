#include "effect/perspective/HighQualitySampler.h"

#include <cstddef>
#include <cstring>

#include "effect/perspective/PerspectiveInfo.h"
#include "effect/perspective/RowTrace.h"

namespace {

// The coordinates u and v in units of the output's size, and a box of each pixel's own.
struct HighQuality {
  static RowWalk walkFrom(const KZFX_PerspectiveInfo& info, std::int32_t x, std::int32_t y, InputScale* scale) {
    const auto& m = info.quad_to_unit.m;
    *scale = {info.x_scale, info.y_scale};
    const double width = info.out_width_d;
    const double height = info.out_height_d;
    return {{width * (m[0][0] * x + m[1][0] * y + m[2][0]), m[0][0] * width, m[1][0] * width},
            {height * (m[0][1] * x + m[1][1] * y + m[2][1]), m[0][1] * height, m[1][1] * height},
            {m[0][2] * x + m[1][2] * y + m[2][2], m[0][2], m[1][2]}};
  }

  static PF_SampleParams firstParams(const KZFX_PerspectiveInfo& info) { return {0, 0, 0, info.input_world, {}}; }

  static bool computeBlock(const RowBlockFunctions& functions, RowWalk* walk, const InputScale& scale, int count,
                           PixelBlock* block) {
    return functions.footprints(walk, scale, count, block);
  }

  static void setBox(const SampleBoxSize& box, PF_SampleParams* params) { std::memcpy(params, &box, sizeof box); }
};
static_assert(offsetof(PF_SampleParams, x_radius) == offsetof(SampleBoxSize, x_radius) &&
              offsetof(PF_SampleParams, y_radius) == offsetof(SampleBoxSize, y_radius) &&
              offsetof(PF_SampleParams, area) == offsetof(SampleBoxSize, area) &&
              offsetof(PF_SampleParams, source) >= sizeof(SampleBoxSize));

}  // namespace

template <typename Pixel>
void traceHighQualityRow(const void* info, std::int32_t x, std::int32_t y, Pixel* out,
                         const RowBlockFunctions& functions) {
  traceRow<HighQuality>(*static_cast<const KZFX_PerspectiveInfo*>(info), x, y, out, functions);
}
template void traceHighQualityRow(const void*, std::int32_t, std::int32_t, PF_Pixel8*, const RowBlockFunctions&);
template void traceHighQualityRow(const void*, std::int32_t, std::int32_t, PF_Pixel16*, const RowBlockFunctions&);
template void traceHighQualityRow(const void*, std::int32_t, std::int32_t, PF_PixelFloat*, const RowBlockFunctions&);

std::int32_t KZFX_TracePointHi(void* info, std::int32_t x, std::int32_t y, PF_Pixel8* /*in*/, PF_Pixel8* out) {
  traceHighQualityRow(info, x, y, out, bestRowBlockFunctions());
  return ERR_NONE;
}

std::int32_t KZFX_TracePointHi16(void* info, std::int32_t x, std::int32_t y, PF_Pixel16* /*in*/, PF_Pixel16* out) {
  traceHighQualityRow(info, x, y, out, bestRowBlockFunctions());
  return ERR_NONE;
}

std::int32_t KZFX_TracePointHiFloat(void* info, std::int32_t x, std::int32_t y, PF_PixelFloat* /*in*/,
                                    PF_PixelFloat* out) {
  traceHighQualityRow(info, x, y, out, bestRowBlockFunctions());
  return ERR_NONE;
}
