# What a fault in memory meets in programs and modules that strangers' files are given to.
#
# Relocations are read-only before anything runs, everywhere. The flags of the compiler take a rebuild, so that they have
# a switch; the preset "package" sets it. Control-flow protection is left out: Debian's start-up objects are not marked
# for it, so that the loader would not turn it on.
option(VANTOREL_HARDEN "Compile with the stack protector and checked library calls" OFF)

if(NOT VANTOREL_SANITIZE)
  add_link_options(-Wl,-z,relro,-z,now,-z,noexecstack)
endif()
if(VANTOREL_HARDEN)
  add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 -fstack-protector-strong -fstack-clash-protection)
  add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
endif()
