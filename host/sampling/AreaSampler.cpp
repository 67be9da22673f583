#include "host/sampling/AreaSampler.h"

#include <cstddef>

#include "host/sampling/AreaSamplerVariants.h"

namespace vantorel::host {

namespace {

// In the order of InstructionSet.
constexpr const AreaSamplerTables* kTables[] = {
    &kScalarAreaSamplers,
#if defined(__x86_64__)
    &kAvx2AreaSamplers,
    &kAvx512AreaSamplers,
#endif
};

}  // namespace

const AreaSamplers& areaSamplers(InstructionSet set, SampleSpace space) {
  return kTables[static_cast<std::size_t>(set)]->in[static_cast<std::size_t>(space)];
}

}  // namespace vantorel::host
