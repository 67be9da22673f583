#!/usr/bin/env bash
# check_packages.sh BUILD SOURCE WORK: packs BUILD into Debian packages, unpacks them into one root and uses them there.
set -euo pipefail
build=$1 source=$2 work=$3
rm -rf "$work"
mkdir -p "$work"

cpack --config "$build/CPackConfig.cmake" -B "$work/packages" >"$work/cpack.log" || { cat "$work/cpack.log"; exit 1; }
for package in "$work"/packages/*.deb; do
  dpkg-deb -x "$package" "$work/root"
  dpkg-deb -c "$package" | awk '$1 !~ /^d/ { print $6 }' >>"$work/files"
  dpkg-deb -f "$package" Depends | grep -q . || [[ $package == *-doc_* ]] || { echo "$package depends on nothing"; exit 1; }
done
twice=$(sort "$work/files" | uniq -d)
[ -z "$twice" ] || { printf 'in two packages:\n%s\n' "$twice"; exit 1; }

mapfile -t guides < <(find "$work/root" -name '*.md')
"$source/tests/docs/check_links.sh" "${guides[@]}"
"$source/tests/packages/use_packages.sh" "$work/root/usr" "$source" "$work/use"
