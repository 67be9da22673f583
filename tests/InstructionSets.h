// The instruction sets whose variants a test can compare on this machine.
#pragma once

#include <algorithm>
#include <iterator>
#include <vector>

#include "platform/Cpu.h"

inline std::vector<InstructionSet> availableSets() {
  std::vector<InstructionSet> sets;
  std::copy_if(std::begin(kInstructionSets), std::end(kInstructionSets), std::back_inserter(sets), isAvailable);
  return sets;
}
