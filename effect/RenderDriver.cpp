#include "effect/RenderDriver.h"

#include "effect/CornerGeometry.h"
#include "effect/PathChoice.h"
#include "effect/PreRender.h"
#include "effect/ProjectiveMap.h"
#include "effect/bilinear/BilinearDriver.h"
#include "effect/perspective/PerspectiveInfo.h"
#include "effect/perspective/RowSamplers.h"
#include "support/KZFX_Iterate.h"
#include "support/KZFX_SuiteHelper.h"
#include "support/KZFX_World.h"

namespace {

// How far the reject box reaches beyond the corner points, in output pixels.
constexpr double kRejectMargin = 5.0;

// One pixel wide, since each call of a row sampler draws a whole row.
M_LRect iterationArea(PF_LayerDef* output) {
  const M_LRect& extent = M_RemoveUnionableness(output->extent_hint);
  return {0, M_Max(extent.top, 0), 1, M_Min(extent.bottom, output->height)};
}

void fillSizes(const PF_InData* in_data, PF_LayerDef* input, const PF_LayerDef* output, KZFX_PerspectiveInfo* info) {
  info->out_width_d = output->width;
  info->out_height_d = output->height;
  info->out_width = output->width;
  info->out_height = output->height;
  info->input_world = input;
  info->effect_ref = in_data->effect_ref;
}

// Fills the map, the reject box and the scales from the corner points. It shifts the points right by a pixel because
// the row samplers step by a pixel before they evaluate: output pixel (x, y) is thus mapped as the point (x, y) of the
// unshifted quadrilateral.
void fillGeometry(const PF_LayerDef* input, M_Vector2T<double>* points, KZFX_PerspectiveInfo* info) {
  for (int i = 0; i < 4; ++i) {
    points[i].x += 1.0;
  }
  // If the quadrilateral has no map, the matrix stays zero, which makes every pixel transparent.
  for (auto& row : info->quad_to_unit.m) {
    for (double& entry : row) {
      entry = 0.0;
    }
  }
  KZFX_MapUnitSquareToFromQuad(points, &info->quad_to_unit, 0);

  const M_FloatRect box = cornerBounds(points);
  info->bound_left = box.left - kRejectMargin;
  info->bound_right = box.right + kRejectMargin;
  info->bound_top = box.top - kRejectMargin;
  info->bound_bottom = box.bottom + kRejectMargin;
  info->x_scale = input->width / info->out_width_d;
  info->y_scale = input->height / info->out_height_d;
}

std::int32_t iterateFloatRows(PF_InData* in_data, PF_OutData* out_data, const M_LRect& area, KZFX_PerspectiveInfo* info,
                              PF_LayerDef* output) {
  const void* suite = nullptr;
  std::int32_t err =
      KZFX_AcquireSuite(in_data, out_data, PF_SAMPLING_FLOAT_SUITE, PF_SAMPLING_FLOAT_SUITE_VERSION, nullptr, &suite);
  if (err != ERR_NONE) {
    return err;
  }
  info->sample_float = static_cast<const PF_SamplingFloatSuite1*>(suite)->sample_area_float;
  const PF_PixelFunctionFloat sample_row =
      in_data->quality == PF_QUALITY_HIGH ? KZFX_TracePointHiFloat : KZFX_TracePointFPUFloat;
  err = PF_IterateWrap(in_data, 0, info->out_height, nullptr, &area, info, sample_row, output);
  KZFX_ReleaseSuite(in_data, out_data, PF_SAMPLING_FLOAT_SUITE, PF_SAMPLING_FLOAT_SUITE_VERSION, nullptr);
  return err;
}

std::int32_t iterate16Rows(PF_InData* in_data, const M_LRect& area, KZFX_PerspectiveInfo* info, PF_LayerDef* output) {
  info->sample_16 = in_data->utility_callbacks->sample_area_16;
  const PF_PixelFunction16 sample_row =
      in_data->quality == PF_QUALITY_HIGH ? KZFX_TracePointHi16 : KZFX_TracePointFPU16;
  return in_data->utility_callbacks->iterate_16(in_data, 0, info->out_height, nullptr, &area, info, sample_row, output);
}

std::int32_t iterate8Rows(PF_InData* in_data, const M_LRect& area, KZFX_PerspectiveInfo* info, PF_LayerDef* output) {
  info->sample_8 = in_data->utility_callbacks->sample_area_8;
  const PF_PixelFunction8 sample_row = in_data->quality == PF_QUALITY_HIGH ? KZFX_TracePointHi : KZFX_TracePointFPU;
  return in_data->utility_callbacks->iterate_8(in_data, 0, info->out_height, nullptr, &area, info, sample_row, output);
}

}  // namespace

std::int32_t Render(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output) {
  return DoRender(in_data, out_data, &params[0]->value.layer_world, output);
}

std::int32_t SmartRender(PF_InData* in_data, PF_OutData* out_data, PF_SmartRenderExtra* extra) {
  const PF_SmartRenderCallbacks& callbacks = *extra->callbacks;
  PF_LayerDef* input = nullptr;
  std::int32_t err = callbacks.checkout_layer_pixels(in_data->effect_ref, kInputCheckoutId, &input);
  if (err != ERR_NONE) {
    return err;
  }
  PF_LayerDef* output = nullptr;
  err = callbacks.checkout_output(in_data->effect_ref, &output);
  if (err != ERR_NONE) {
    return err;
  }
  if (input == nullptr || output == nullptr) {
    return ERR_NONE;
  }
  return DoRender(in_data, out_data, input, output);
}

std::int32_t DoRender(PF_InData* in_data, PF_OutData* out_data, PF_LayerDef* input, PF_LayerDef* output) {
  if (UseBilinear(in_data, out_data, input)) {
    return TracePointBilinear(in_data, out_data, input, output);
  }
  const M_LRect area = iterationArea(output);
  KZFX_PerspectiveInfo info;
  fillSizes(in_data, input, output, &info);

  M_Vector2T<double> points[4]{};
  std::int32_t err = GetCornerPoints(in_data, out_data, input, points);
  if (err != ERR_NONE) {
    return err;
  }
  fillGeometry(input, points, &info);

  std::int32_t depth = 0;
  err = KZFX_GetEffectWorldRGBDepth(in_data, out_data, output, &depth);
  if (err != ERR_NONE) {
    return err;
  }
  switch (depth) {
    case 32:
      return iterateFloatRows(in_data, out_data, area, &info, output);
    case 16:
      return iterate16Rows(in_data, area, &info, output);
    case 8:
      return iterate8Rows(in_data, area, &info, output);
    default:
      return ERR_NONE;
  }
}
