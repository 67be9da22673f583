#include "effect/perspective/PixelBatch.h"

#include <cstddef>

#include "effect/perspective/PixelBatchVariants.h"

namespace {

// In the order of InstructionSet.
constexpr const PixelBatchFunctions* kFunctions[] = {
    &kPixelBatchScalar,
#if defined(__x86_64__)
    &kPixelBatchAvx2,
    &kPixelBatchAvx512,
#endif
};

}  // namespace

const PixelBatchFunctions& pixelBatchFunctions(InstructionSet set) {
  return *kFunctions[static_cast<std::size_t>(set)];
}
