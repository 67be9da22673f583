# The files that are compiled once per instruction set, and the flags of each set, which platform/Cpu.h names.

set(VANTOREL_AVX2_FLAGS -mavx2 -mfma)
# GCC 12's AVX-512 header causes warnings about variables that it deliberately leaves uninitialised.
set(VANTOREL_AVX512_FLAGS ${VANTOREL_AVX2_FLAGS} -mavx512f -mavx512dq -mavx512vl -mavx512bw -mavx512ifma
                          -mprefer-vector-width=512)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  list(APPEND VANTOREL_AVX512_FLAGS -Wno-uninitialized -Wno-maybe-uninitialized)
endif()

# vantorel_simd_sources(TARGET NAME): compiles NAMEScalar.cpp into the target and, on x86-64, NAMEAvx2.cpp and
# NAMEAvx512.cpp with their sets' flags.
function(vantorel_simd_sources target name)
  target_sources(${target} PRIVATE ${name}Scalar.cpp)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    target_sources(${target} PRIVATE ${name}Avx2.cpp ${name}Avx512.cpp)
    set_source_files_properties(${name}Avx2.cpp PROPERTIES COMPILE_OPTIONS "${VANTOREL_AVX2_FLAGS}")
    set_source_files_properties(${name}Avx512.cpp PROPERTIES COMPILE_OPTIONS "${VANTOREL_AVX512_FLAGS}")
  endif()
endfunction()
