# Settings for all targets: results that are equal to the bit at every optimisation level, compiler and instruction set
# (no contraction of a * b + c, no fast maths), warnings as errors, and nothing exported unless marked.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# Puts the module beside the programs, which look for it there.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

find_program(VANTOREL_CCACHE ccache)
if(VANTOREL_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${VANTOREL_CCACHE})
endif()

add_compile_options(-ffp-contract=off -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
                    -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
if(VANTOREL_SANITIZE)
  add_compile_options(-fsanitize=${VANTOREL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # With the sanitizers' instrumentation, GCC 12 wrongly reports parts of its own std::function as uninitialised.
    add_compile_options(-Wno-maybe-uninitialized)
  endif()
  add_link_options(-fsanitize=${VANTOREL_SANITIZE})
endif()
