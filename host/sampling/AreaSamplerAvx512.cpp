// The area samplers with AVX-512 (F, DQ, VL, BW, IFMA); called only where the machine has it.
#if defined(__AVX512F__) && defined(__AVX512DQ__) && defined(__AVX512VL__) && defined(__AVX512BW__) && \
    defined(__AVX512IFMA__)

#include "host/sampling/SmallBoxesAvx512.inl"
#include "host/sampling/VectorAreaSamplers.inl"

namespace vantorel::host {

const AreaSamplers& avx512AreaSamplers() {
  static constexpr AreaSamplers kSamplers{sample<Depth8>, sample<Depth16>, sample<DepthFloat>};
  return kSamplers;
}

}  // namespace vantorel::host

#endif
