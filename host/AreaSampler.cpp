#include "host/AreaSampler.h"

#include <initializer_list>

#include "host/AreaSamplerVariants.h"

namespace vantorel::host {

#if defined(__x86_64__)

namespace {

bool hasAvx2() {
  return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
}

bool hasAvx512() {
  return hasAvx2() && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
         __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512bw") &&
         __builtin_cpu_supports("avx512ifma");
}

}  // namespace

#endif

const AreaSamplers* areaSamplersOf(SamplerVariant variant) {
  switch (variant) {
    case SamplerVariant::Plain:
      return &plainAreaSamplers();
#if defined(__x86_64__)
    case SamplerVariant::Avx2:
      return hasAvx2() ? &avx2AreaSamplers() : nullptr;
    case SamplerVariant::Avx512:
      return hasAvx512() ? &avx512AreaSamplers() : nullptr;
#endif
    default:
      return nullptr;
  }
}

const AreaSamplers& areaSamplers() {
  static const AreaSamplers& best = []() -> const AreaSamplers& {
    for (const SamplerVariant variant : {SamplerVariant::Avx512, SamplerVariant::Avx2}) {
      if (const AreaSamplers* const samplers = areaSamplersOf(variant)) {
        return *samplers;
      }
    }
    return plainAreaSamplers();
  }();
  return best;
}

}  // namespace vantorel::host
