#include "effect/perspective/PixelBatch.h"

#include <initializer_list>

#include "effect/perspective/PixelBatchScalar.h"

const RowBlockFunctions* rowBlockFunctionsFor(InstructionSet set) {
  switch (set) {
    case InstructionSet::Plain:
      return &kRowBlocksPlain;
#if defined(__x86_64__)
    case InstructionSet::Avx2:
      return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") ? &kRowBlocksAvx2 : nullptr;
    case InstructionSet::Avx512:
      return __builtin_cpu_supports("fma") && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
                     __builtin_cpu_supports("avx512vl")
                 ? &kRowBlocksAvx512
                 : nullptr;
#endif
    default:
      return nullptr;
  }
}

const RowBlockFunctions& bestRowBlockFunctions() {
  static const RowBlockFunctions& best = []() -> const RowBlockFunctions& {
    for (const InstructionSet set : {InstructionSet::Avx512, InstructionSet::Avx2}) {
      if (const RowBlockFunctions* const functions = rowBlockFunctionsFor(set)) {
        return *functions;
      }
    }
    return kRowBlocksPlain;
  }();
  return best;
}
