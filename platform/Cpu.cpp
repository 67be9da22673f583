#include "platform/Cpu.h"

#include <cstdlib>
#include <cstring>

namespace {

InstructionSet chooseInstructionSet() {
  InstructionSet forced = InstructionSet::Scalar;
  const char* const name = std::getenv(kSimdVariable);
  if (name != nullptr && findInstructionSet(name, &forced) && isAvailable(forced)) {
    return forced;
  }
  InstructionSet best = InstructionSet::Scalar;
  for (const InstructionSet set : kInstructionSets) {
    if (isAvailable(set)) {
      best = set;
    }
  }
  return best;
}

const InstructionSet kActive = chooseInstructionSet();

}  // namespace

const char* instructionSetName(InstructionSet set) {
  switch (set) {
    case InstructionSet::Avx2:
      return "avx2";
    case InstructionSet::Avx512:
      return "avx512";
    case InstructionSet::Scalar:
      break;
  }
  return "scalar";
}

bool findInstructionSet(const char* name, InstructionSet* set) {
  for (const InstructionSet candidate : kInstructionSets) {
    if (std::strcmp(name, instructionSetName(candidate)) == 0) {
      *set = candidate;
      return true;
    }
  }
  return false;
}

bool isAvailable(InstructionSet set) {
#if defined(__x86_64__)
  __builtin_cpu_init();
  const bool has_avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
  switch (set) {
    case InstructionSet::Avx2:
      return has_avx2;
    case InstructionSet::Avx512:
      return has_avx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
             __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512bw") &&
             __builtin_cpu_supports("avx512ifma");
    case InstructionSet::Scalar:
      break;
  }
#endif
  return set == InstructionSet::Scalar;
}

InstructionSet activeInstructionSet() {
  return kActive;
}
