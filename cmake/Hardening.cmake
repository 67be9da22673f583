# Hardening of programs and modules that read untrusted files.
#
# Relocations are always made read-only at start. The compiler flags cost speed and are therefore optional; the preset
# "package" sets them. Control-flow protection is left out: Debian's start-up objects are not marked for it, so the
# loader would not enable it.
option(VANTOREL_HARDEN "Compile with the stack protector and checked library calls" OFF)

if(NOT VANTOREL_SANITIZE)
  add_link_options(-Wl,-z,relro,-z,now,-z,noexecstack)
endif()
if(VANTOREL_HARDEN)
  add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 -fstack-protector-strong -fstack-clash-protection)
  add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
endif()
