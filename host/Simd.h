// The instruction sets that the pixel loops of this library are compiled for, and the one in use.
//
// Every set gives the same bits; they differ in speed alone. The fastest that the processor has is used, unless the
// environment variable VANTOREL_SIMD names another: "scalar", "avx2" or "avx512". It is read once, when the program
// starts, and the effect module reads it for its own loops.
#pragma once

#include <array>
#include <string_view>

#include "host/Error.h"

namespace vantorel::host {

struct SimdVariant {
  std::string_view name;   // as VANTOREL_SIMD takes it; lives as long as the program
  bool available = false;  // this processor and build have it
  bool active = false;     // in use; true of exactly one
};

// All variants, in rising order of speed.
std::array<SimdVariant, 3> simdVariants() noexcept;

// InvalidArgument, about the input "VANTOREL_SIMD", where that variable names no variant or one that is not available;
// the fastest available is used then. An empty value counts as none. Loading a module checks it too.
Result<void> checkSimdChoice();

}  // namespace vantorel::host
