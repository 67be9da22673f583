#include "effect/bilinear/BilinearDriver.h"

#include "effect/CornerGeometry.h"
#include "effect/FixedPoint.h"
#include "effect/Parameters.h"
#include "effect/bilinear/QuadScan.h"
#include "math/Int32FromDouble.h"
#include "support/KZFX_World.h"

namespace {

// The layer's own rectangle inside the input, in corner order, with its right and bottom edges truncated to whole
// pixels.
void sourceRect(const PF_InData* in_data, M_FixedPoint* source) {
  const ScaledSize layer = scaledLayerSize(in_data);
  const std::int32_t left = fixedFromInt(in_data->source_origin_x);
  const std::int32_t top = fixedFromInt(in_data->source_origin_y);
  const std::int32_t right = fixedFromInt(int32FromDouble(in_data->source_origin_x + layer.width));
  const std::int32_t bottom = fixedFromInt(int32FromDouble(in_data->source_origin_y + layer.height));
  source[0] = {left, top};
  source[1] = {right, top};
  source[2] = {right, bottom};
  source[3] = {left, bottom};
}

}  // namespace

std::int32_t TracePointBilinear(PF_InData* in_data, PF_OutData* out_data, PF_LayerDef* input, PF_LayerDef* output) {
  M_FixedPoint source[4];
  sourceRect(in_data, source);
  M_FixedPoint corners[4];
  std::int32_t err = GetCornerParamsFixed(in_data, corners, in_data->output_origin_x, in_data->output_origin_y);
  if (err != ERR_NONE) {
    return err;
  }
  // The scan renderers write only covered pixels, so everything else is made transparent first.
  in_data->utility_callbacks->fill(in_data->effect_ref, nullptr, nullptr, output);

  std::int32_t depth = 0;
  err = KZFX_GetEffectWorldRGBDepth(in_data, out_data, output, &depth);
  if (err != ERR_NONE) {
    return err;
  }
  switch (depth) {
    case 32:
      FixedToFixedFloat(in_data, input, source, corners, output);
      break;
    case 16:
      FixedToFixed16(in_data, input, source, corners, output);
      break;
    case 8:
      FixedToFixed(in_data, input, source, corners, output);
      break;
    default:
      break;
  }
  return ERR_NONE;
}
