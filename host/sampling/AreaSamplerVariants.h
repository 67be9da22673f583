// The variants that AreaSampler.cpp chooses from; those beyond the scalar one exist on x86-64 only. The vector variants
// fall back to the scalar one for boxes that they do not handle.
#pragma once

#include "host/sampling/AreaSampler.h"

namespace vantorel::host {

struct AreaSamplerTables {
  AreaSamplers in[kSampleSpaces];  // by SampleSpace

  VANTOREL_INLINE constexpr const AreaSamplers& centres() const { return in[0]; }
};

extern const AreaSamplerTables kScalarAreaSamplers;
extern const AreaSamplerTables kAvx2AreaSamplers;
extern const AreaSamplerTables kAvx512AreaSamplers;

}  // namespace vantorel::host
