#include "KZFX_World.h"

#include "KZFX_SuiteHelper.h"

namespace {

struct DepthFormat {
  std::int32_t depth;
  std::int32_t pixel_format;
};

constexpr DepthFormat kDepthFormats[] = {
    {32, PF_PIXEL_FORMAT_ARGB32F}, {16, PF_PIXEL_FORMAT_ARGB16}, {8, PF_PIXEL_FORMAT_ARGB8}};

std::int32_t reportUnexpectedFormat(PF_InData* in_data, PF_OutData* out_data, const char* message) {
  out_data->out_flags |= OUT_FLAG_SHOW_MESSAGE;
  in_data->utility_callbacks->sprintf(out_data->return_msg, message);
  return ERR_FAILED;
}

// Runs `use` with the world suite acquired. An error of the release is reported only if `use` succeeded.
template <typename Use>
std::int32_t withWorldSuite(PF_InData* in_data, PF_OutData* out_data, Use use) {
  const void* suite = nullptr;
  std::int32_t err = KZFX_AcquireSuite(in_data, out_data, PF_WORLD_SUITE, PF_WORLD_SUITE_VERSION, nullptr, &suite);
  if (err != ERR_NONE) {
    return err;
  }
  err = use(*static_cast<const PF_WorldSuite2*>(suite));
  const std::int32_t release_err =
      KZFX_ReleaseSuite(in_data, out_data, PF_WORLD_SUITE, PF_WORLD_SUITE_VERSION, nullptr);
  return err != ERR_NONE ? err : release_err;
}

}  // namespace

std::int32_t KZFX_GetEffectWorldRGBDepth(PF_InData* in_data, PF_OutData* out_data, PF_LayerDef* world,
                                         std::int32_t* depth) {
  std::int32_t pixel_format = 0;
  const std::int32_t err = withWorldSuite(
      in_data, out_data, [&](const PF_WorldSuite2& suite) { return suite.get_pixel_format(world, &pixel_format); });
  if (err != ERR_NONE) {
    return err;
  }
  for (const DepthFormat& known : kDepthFormats) {
    if (known.pixel_format == pixel_format) {
      *depth = known.depth;
      return ERR_NONE;
    }
  }
  return reportUnexpectedFormat(in_data, out_data, "Unexpected pixel format in KZFX_GetEffectWorldRGBDepth()");
}

std::int32_t KZFX_NewWorldRGBDepth(PF_InData* in_data, PF_OutData* out_data, std::int32_t width, std::int32_t height,
                                   std::int32_t depth, bool clear, PF_LayerDef* world) {
  for (const DepthFormat& known : kDepthFormats) {
    if (known.depth == depth) {
      return withWorldSuite(in_data, out_data, [&](const PF_WorldSuite2& suite) {
        return suite.new_world(in_data->effect_ref, width, height, clear, known.pixel_format, world);
      });
    }
  }
  return reportUnexpectedFormat(in_data, out_data, "Unexpected pixel format in KZFX_NewWorldRGBDepth()");
}
