// What the perspective renderer's row samplers need to know about a render.
#pragma once

#include <cstdint>

#include "math/M_stuff.h"
#include "support/PF_HostRecords.h"

// Filled by the render driver before the iteration starts; every row-sampler call gets its address and only reads it.
// `quad_to_unit` takes the output point (x, y) as [x y 1] * M = [X Y W] to u = X / W, v = Y / W: u runs from 0 at the
// input's left edge to 1 at its right edge, v from its top to its bottom edge.
struct KZFX_PerspectiveInfo {
  // Leaves all fields unset.
  KZFX_PerspectiveInfo() : quad_to_unit(false) {}

  double out_width_d;  // the output world's size in pixels
  double out_height_d;
  std::int32_t out_width;   // what each row-sampler call writes
  std::int32_t out_height;  // the iteration's progress total
  M_Matrix3 quad_to_unit;
  double bound_left;  // the reject box, output pixels: outside it everything is transparent
  double bound_right;
  double bound_top;
  double bound_bottom;
  double x_scale;  // input size divided by output size
  double y_scale;
  PF_LayerDef* input_world;
  void* effect_ref;
  PF_AreaSampler<PF_Pixel8> sample_8;          // set for 8-bit renders only
  PF_AreaSampler<PF_Pixel16> sample_16;        // set for 16-bit renders only
  PF_AreaSampler<PF_PixelFloat> sample_float;  // set for float renders only
};

// The sampler for a pixel type.
template <typename Pixel>
PF_AreaSampler<Pixel> areaSamplerOf(const KZFX_PerspectiveInfo& info);

template <>
inline PF_AreaSampler<PF_Pixel8> areaSamplerOf<PF_Pixel8>(const KZFX_PerspectiveInfo& info) {
  return info.sample_8;
}

template <>
inline PF_AreaSampler<PF_Pixel16> areaSamplerOf<PF_Pixel16>(const KZFX_PerspectiveInfo& info) {
  return info.sample_16;
}

template <>
inline PF_AreaSampler<PF_PixelFloat> areaSamplerOf<PF_PixelFloat>(const KZFX_PerspectiveInfo& info) {
  return info.sample_float;
}
