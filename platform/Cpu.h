// The instruction sets for which the inner loops are compiled, and which of them this process uses.
//
// Every set gives the same bits; they differ in speed alone. The environment variable VANTOREL_SIMD names the set to
// use instead of the best that the processor has, to compare or to rule one out.
#pragma once

// In rising order of speed.
enum class InstructionSet {
  Scalar,  // any processor
  Avx2,    // AVX2 and FMA
  Avx512   // AVX-512 F, DQ, VL, BW and IFMA, with AVX2 and FMA
};

inline constexpr InstructionSet kInstructionSets[] = {InstructionSet::Scalar, InstructionSet::Avx2,
                                                      InstructionSet::Avx512};

inline constexpr const char* kSimdVariable = "VANTOREL_SIMD";

// The name by which a set is listed and forced: "scalar", "avx2", "avx512".
const char* instructionSetName(InstructionSet set);

// *set = the set of that name. False, with *set left alone, where there is none.
bool findInstructionSet(const char* name, InstructionSet* set);

// Whether this processor and build have the set. Scalar is always there.
bool isAvailable(InstructionSet set);

// The set in use: the one that VANTOREL_SIMD names where it is available, else the best available. Determined when the
// program or module loads, so that asking takes no lock; not to be asked by the initialisers of other statics.
InstructionSet activeInstructionSet();
