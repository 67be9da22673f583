#include "host/Simd.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string>

#include "host/checking/OutOfMemory.h"
#include "platform/Cpu.h"

namespace vantorel::host {

namespace {

// "scalar, avx2 or avx512"
std::string choices(bool only_available) {
  std::string names;
  std::string last;
  for (const SimdVariant& variant : simdVariants()) {
    if (only_available && !variant.available) {
      continue;
    }
    if (!last.empty()) {
      names += names.empty() ? last : ", " + last;
    }
    last = variant.name;
  }
  return names.empty() ? last : names + " or " + last;
}

Result<void> checkChoice() {
  const char* const name = std::getenv(kSimdVariable);
  if (name == nullptr || *name == '\0') {
    return {};
  }
  InstructionSet set = InstructionSet::Scalar;
  if (!findInstructionSet(name, &set)) {
    return invalidArgument(kSimdVariable,
                           '"' + std::string(name) + "\" is not an instruction set; use " + choices(false));
  }
  if (!isAvailable(set)) {
    return invalidArgument(kSimdVariable, "this machine does not have " + std::string(name) + "; use " + choices(true));
  }
  return {};
}

}  // namespace

std::array<SimdVariant, 3> simdVariants() noexcept {
  std::array<SimdVariant, 3> variants{};
  static_assert(std::size(kInstructionSets) == variants.size());
  std::ranges::transform(kInstructionSets, variants.begin(), [](InstructionSet set) {
    return SimdVariant{instructionSetName(set), isAvailable(set), set == activeInstructionSet()};
  });
  return variants;
}

Result<void> checkSimdChoice() {
  return withMemoryErrors(kSimdVariable, checkChoice);
}

}  // namespace vantorel::host
