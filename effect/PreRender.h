// The two-phase protocol's first step: which input the frame needs, and which rectangle will be drawn.
#pragma once

#include <cstdint>

#include "support/PF_HostRecords.h"

// The checkout id under which pre-render declares the input layer and smart render collects its pixels.
constexpr std::int32_t kInputCheckoutId = 0;

// Checks out the whole input layer and reports in extra->result the rectangle that will be drawn and the largest that
// could be. The former is the union of the delivered rectangle and the corners' bounding box extended by a pixel,
// clipped to the host's request; it is left unchanged when the checkout delivers nothing.
//
// There is no input world yet, so the size of the buffer that smart render will get has to be inferred: it is that of
// the checkout's result if this places the layer's origin where PF_InData does, else that of the scaled layer.
//
// Returns 0, or the error of the checkout or of the corner points, with extra->result unchanged.
std::int32_t PreRender(PF_InData* in_data, PF_OutData* out_data, PF_PreRenderExtra* extra);
