#!/usr/bin/env bash
# check_paths.sh SOURCE: every file and folder of the source that its pages name in backticks exists; a name without an
# extension stands for a header, its source or both.
set -euo pipefail
shopt -s nullglob
cd "$1"

folders=$(printf '%s|' */)
missing=0
while IFS=: read -r page path; do
  found=("$path" "$path".*)
  if [ ! -e "$path" ] && [ "${#found[@]}" -le 1 ]; then
    echo "$page: $path does not exist"
    missing=1
  fi
done < <(grep -oHP "\`\K(?:${folders%|})[\w./-]*(?=\`)" ./*.md docs/*.md | grep -v ':build/')
exit "$missing"
