// The area samplers with AVX2 and FMA; called only where the machine has them.
#if defined(__AVX2__) && defined(__FMA__)

#include "host/sampling/SmallBoxesAvx2.inl"
#include "host/sampling/VectorAreaSamplers.inl"

namespace vantorel::host {

const AreaSamplers& avx2AreaSamplers() {
  static constexpr AreaSamplers kSamplers{sample<Depth8>, sample<Depth16>, sample<DepthFloat>};
  return kSamplers;
}

}  // namespace vantorel::host

#endif
