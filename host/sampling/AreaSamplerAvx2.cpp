// The area samplers with AVX2 and FMA; called only where the machine has them.
#if defined(__AVX2__) && defined(__FMA__)

#include "host/sampling/SmallBoxesAvx2.inl"
#include "host/sampling/VectorAreaSamplers.inl"

namespace vantorel::host {

const AreaSamplerTables& avx2AreaSamplers() {
  return kSamplerTables;
}

}  // namespace vantorel::host

#endif
