// The variants that areaSamplers() chooses from; all give the same bits.
#pragma once

#include "host/sampling/AreaSampler.h"

namespace vantorel::host {

struct AreaSamplerTables {
  AreaSamplers in[kSampleSpaces];  // by SampleSpace

  VANTOREL_INLINE constexpr const AreaSamplers& centres() const { return in[0]; }
};

// For every machine.
const AreaSamplerTables& plainAreaSamplers();

// For machines with AVX2 and FMA; exists on x86-64 only.
const AreaSamplerTables& avx2AreaSamplers();

// For machines with AVX-512, as far as its processors since about 2019 have it; exists on x86-64 only.
const AreaSamplerTables& avx512AreaSamplers();

}  // namespace vantorel::host
