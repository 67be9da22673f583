#include "host/AreaSampler.h"

#include "host/AreaSamplerVariants.h"

namespace vantorel::host {

const AreaSamplers* areaSamplersOf(SamplerVariant variant) {
  switch (variant) {
    case SamplerVariant::Plain:
      return &plainAreaSamplers();
#if defined(__x86_64__)
    case SamplerVariant::Avx2:
      return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") ? &avx2AreaSamplers() : nullptr;
#endif
    default:
      return nullptr;
  }
}

const AreaSamplers& areaSamplers() {
  static const AreaSamplers* const avx2 = areaSamplersOf(SamplerVariant::Avx2);
  return avx2 != nullptr ? *avx2 : plainAreaSamplers();
}

}  // namespace vantorel::host
