#!/usr/bin/env bash
# check_exports.sh FILE NAME...: compares the symbols that FILE exports, or, where it is a header, the functions that it
# marks for export, with the names. Reports each that was lost or added.
set -euo pipefail

file=$1
shift
case $file in
  *.h) found=$(sed -nE 's/^M_API [^(]* [*]?(M_[A-Za-z0-9]+)\(.*/\1/p' "$file") ;;
  *) found=$(nm -D --defined-only "$file" | awk '{ print $3 }') ;;
esac
lost=$(comm -23 <(printf '%s\n' "$@" | LC_ALL=C sort) <(LC_ALL=C sort <<<"$found"))
added=$(comm -13 <(printf '%s\n' "$@" | LC_ALL=C sort) <(LC_ALL=C sort <<<"$found"))
[ -z "$lost" ] || printf 'lost: %s\n' $lost
[ -z "$added" ] || printf 'added: %s\n' $added
[ -z "$lost$added" ]
