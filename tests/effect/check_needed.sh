#!/usr/bin/env bash
# check_needed.sh MODULE: reports the libraries that MODULE needs beyond the C++ runtime and a sanitizer's.
set -euo pipefail

needed=$(readelf -d "$1" | sed -nE 's/.*\(NEEDED\).*\[(.*)\]/\1/p')
others=$(grep -vE '^(libstdc\+\+|libm|libgcc_s|libc|lib[a-z]+san)\.so|^ld-linux' <<<"$needed" || true)
[ -z "$others" ] || printf 'needs %s\n' $others
[ -n "$needed" ] && [ -z "$others" ]
