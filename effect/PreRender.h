// The two-phase protocol's first step: which input a frame needs, and which rectangle it draws.
#pragma once

#include <cstdint>

#include "support/PF_HostRecords.h"

// The checkout id under which pre-render declares the input layer and smart render collects its pixels.
constexpr std::int32_t kInputCheckoutId = 0;

// Checks out the whole input layer and reports in extra->result the rectangle that will be drawn (what the checkout
// delivers, united with the corners' bounding box widened by a pixel, cut to the host's request; left alone when the
// checkout delivers nothing) and the largest that could be.
//
// There is no input world yet. The size of the buffer that smart render will get is that of the checkout's result,
// where the host's answer places the layer's origin as PF_InData does, and that of the scaled layer otherwise.
//
// Returns 0, or the error of the checkout or of the corner points, extra->result being left alone.
std::int32_t PreRender(PF_InData* in_data, PF_OutData* out_data, PF_PreRenderExtra* extra);
