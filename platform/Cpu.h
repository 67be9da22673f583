// The instruction sets for which the inner loops are compiled, and the one that this process uses.
//
// All give the same bits and differ only in speed. The environment variable VANTOREL_SIMD forces one of them instead of
// the best that the processor has, for comparisons and for troubleshooting.
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

// *set = the set of that name. False, with *set unchanged, if there is none.
bool findInstructionSet(const char* name, InstructionSet* set);

// Whether this processor and build have the set. Scalar is always available.
bool isAvailable(InstructionSet set);

// The set in use: the one that VANTOREL_SIMD names if it is available, else the best available. Chosen when the program
// or module loads, so that a call takes no lock; initialisers of other statics must not call it.
InstructionSet activeInstructionSet();
