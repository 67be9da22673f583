// The variants that AreaSampler.cpp chooses from; those beyond the scalar one exist on x86-64 only. The vector variants
// leave to the scalar one what they have no code for.
#pragma once

#include "host/sampling/AreaSampler.h"

namespace vantorel::host {

extern const AreaSamplers kScalarAreaSamplers;
extern const AreaSamplers kAvx2AreaSamplers;
extern const AreaSamplers kAvx512AreaSamplers;

}  // namespace vantorel::host
