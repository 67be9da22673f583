#include "effect/FrameSetup.h"

#include "effect/CornerGeometry.h"
#include "effect/Parameters.h"
#include "effect/PathChoice.h"
#include "effect/StringTable.h"
#include "math/Int32FromDouble.h"

namespace {

// The box, extended by a pixel on every side and clipped to the hint.
M_FloatRect outputRect(const M_FloatRect& box, const M_LRect& hint) {
  const M_FloatRect wide(box.left - 1.0, box.top - 1.0, box.right + 1.0, box.bottom + 1.0);
  return {wide.left > hint.left ? wide.left : hint.left, wide.top > hint.top ? wide.top : hint.top,
          hint.right > wide.right ? wide.right : hint.right, hint.bottom > wide.bottom ? wide.bottom : hint.bottom};
}

std::int32_t reportSizeLimit(PF_InData* in_data, PF_OutData* out_data) {
  const char* const text = LookupString(in_data, FX_STRING_SIZE_LIMIT);
  out_data->out_flags |= OUT_FLAG_SHOW_MESSAGE;
  in_data->utility_callbacks->sprintf(out_data->return_msg, text, kLargestOutput);
  return ERR_FAILED;
}

}  // namespace

std::int32_t FrameSetup(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output) {
  PF_LayerDef* const input = &params[0]->value.layer_world;
  M_Vector2T<double> corners[4]{};
  if (UseBilinear(in_data, out_data, input)) {
    cornersOfCommand(in_data, params, corners);
  } else {
    const std::int32_t err = GetCornerPoints(in_data, out_data, input, corners);
    if (err != ERR_NONE) {
      return err;
    }
  }

  const M_FloatRect rect = outputRect(cornerBounds(corners), M_RemoveUnionableness(output->extent_hint));
  const auto ceiling = [in_data](double value) { return int32FromDouble(in_data->utility_callbacks->ceil(value)); };
  out_data->origin_x = ceiling(-rect.left);
  out_data->origin_y = ceiling(-rect.top);
  const std::int32_t width = ceiling(rect.right - rect.left);
  const std::int32_t height = ceiling(rect.bottom - rect.top);
  if (width > kLargestOutput || height > kLargestOutput) {
    return reportSizeLimit(in_data, out_data);
  }
  out_data->width = M_Max(width, 1);
  out_data->height = M_Max(height, 1);
  return ERR_NONE;
}
