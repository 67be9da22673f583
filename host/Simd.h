// The instruction sets for which the pixel loops of this library are compiled, and the one in use.
//
// All give the same bits and differ only in speed. The fastest one that the processor has is used unless the
// environment variable VANTOREL_SIMD names another: "scalar", "avx2" or "avx512". The variable is read once, when the
// program starts; the effect module reads it too, for its own loops.
#pragma once

#include <array>
#include <string_view>

#include "host/Error.h"

namespace vantorel::host {

struct SimdVariant {
  std::string_view name;   // the name for VANTOREL_SIMD; lives as long as the program
  bool available = false;  // this processor and build have it
  bool active = false;     // in use; true of exactly one
};

// All variants, in rising order of speed.
std::array<SimdVariant, 3> simdVariants() noexcept;

// InvalidArgument, for the input "VANTOREL_SIMD", if that variable names an unknown or unavailable variant; the fastest
// available one is used then. An empty value counts as unset. Loading a module makes the same check.
Result<void> checkSimdChoice();

}  // namespace vantorel::host
