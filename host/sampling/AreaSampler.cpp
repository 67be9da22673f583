#include "host/sampling/AreaSampler.h"

#include "host/sampling/AreaSamplerVariants.h"

namespace vantorel::host {

const AreaSamplers& areaSamplersOf(InstructionSet set) {
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

const AreaSamplers& areaSamplers() {
  static const AreaSamplers& active = areaSamplersOf(activeInstructionSet());
  return active;
}

}  // namespace vantorel::host
