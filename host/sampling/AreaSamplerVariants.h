// The variants that areaSamplers() chooses from; all give the same bits.
#pragma once

#include "host/sampling/AreaSampler.h"

namespace vantorel::host {

// For every machine.
const AreaSamplers& plainAreaSamplers();

// For machines with AVX2 and FMA; exists on x86-64 only.
const AreaSamplers& avx2AreaSamplers();

// For machines with AVX-512, as far as its processors since about 2019 have it; exists on x86-64 only.
const AreaSamplers& avx512AreaSamplers();

}  // namespace vantorel::host
