#!/usr/bin/env bash
# check_links.sh PAGE...: every picture and page that a Markdown page links to exists, relative to the page, and so does
# the heading that a link names.
set -euo pipefail

# anchors_of PAGE: the headings as a link names them.
anchors_of() {
  sed -n 's/^#\+ //p' "$1" | tr '[:upper:] ' '[:lower:]-' | sed 's/[^a-z0-9_-]//g'
}

dead=0
links=0
for page in "$@"; do
  while IFS= read -r link; do
    links=$((links + 1))
    target=$(dirname "$page")/${link%%#*}
    [ -n "${link%%#*}" ] || target=$page
    if [ ! -e "$target" ] || { [[ $link == *#* ]] && ! anchors_of "$target" | grep -qxF "${link#*#}"; }; then
      echo "$page: dead link $link"
      dead=$((dead + 1))
    fi
  done < <(grep -oP '\]\(\K[^)]+' "$page" | grep -v '^[a-z]*://' || true)
done
[ "$links" -gt 0 ] || { echo "the pages hold no links; name Markdown pages" && exit 1; }
[ "$dead" -eq 0 ]
