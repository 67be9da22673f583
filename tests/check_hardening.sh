#!/usr/bin/env bash
# check_hardening.sh HARDENED FILE...: reads from each program or module that its relocations are read-only from the
# start, that its stack holds no code and that it can lie anywhere in memory. With HARDENED=ON, that some of its
# functions check their stack and the lengths of what they copy.
set -euo pipefail

hardened=$1
shift
fault=0
need() {  # FILE WHAT PATTERN TEXT
  grep -qE "$3" <<<"$4" || {
    echo "$1: $2 is missing"
    fault=1
  }
}
for file in "$@"; do
  headers=$(readelf -Wl "$file")
  dynamic=$(readelf -Wd "$file")
  need "$file" "read-only relocations" GNU_RELRO "$headers"
  need "$file" "binding at the start" 'BIND_NOW|Flags:.* NOW' "$dynamic"
  need "$file" "a stack without code" 'GNU_STACK .* RW +0x' "$headers"
  need "$file" "a place that can change" 'Elf file type is DYN' "$headers"
  if [ "$hardened" = ON ]; then
    symbols=$(readelf -W --dyn-syms "$file")
    need "$file" "the stack protector" __stack_chk_fail "$symbols"
    # The effect copies into no buffers, so that there is nothing to check in it.
    [[ $file == *vantorel.so ]] || need "$file" "a checked copy" '__(mem|str|v?sn?printf|read|fd)[a-z]*_chk' "$symbols"
  fi
done
exit "$fault"
