#!/usr/bin/env bash
# check_installed_guides.sh BUILD WORK: no installed guide has a dead link.
set -euo pipefail

build=$1 work=$2
rm -rf "$work"
cmake --install "$build" --prefix "$work" --component docs >/dev/null
mapfile -t pages < <(find "$work" -name '*.md')
"$(dirname "$0")/check_links.sh" "${pages[@]}"
