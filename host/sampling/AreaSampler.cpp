#include "host/sampling/AreaSampler.h"

#include "host/sampling/AreaSamplerVariants.h"

namespace vantorel::host {

namespace {

const AreaSamplerTables& tablesOf(InstructionSet set) {
  switch (set) {
#if defined(__x86_64__)
    case InstructionSet::Avx512:
      return avx512AreaSamplers();
    case InstructionSet::Avx2:
      return avx2AreaSamplers();
#endif
    default:
      return plainAreaSamplers();
  }
}

}  // namespace

const AreaSamplers& areaSamplersOf(InstructionSet set, SampleSpace space) {
  return tablesOf(set).in[static_cast<std::size_t>(space)];
}

const AreaSamplers& areaSamplers(SampleSpace space) {
  static const AreaSamplerTables& active = tablesOf(activeInstructionSet());
  return active.in[static_cast<std::size_t>(space)];
}

}  // namespace vantorel::host
