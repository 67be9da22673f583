#!/usr/bin/env bash
# check_install.sh BUILD SOURCE MODULE WORK: installs the host library from the folder BUILD, moves the installed tree,
# and builds and runs the example program against it by CMake and by pkg-config. CXX and CXXFLAGS say how the library
# was compiled.
set -euo pipefail

build=$1 source=$2 module=$3 work=$4
rm -rf "$work"
mkdir -p "$work"
cmake --install "$build" --prefix "$work/first" --component host >/dev/null
mv "$work/first" "$work/moved"

expect() {
  local expected='rows 0 to 48; alpha 255 in the middle, 0 in a corner' actual
  actual=$("$@")
  if [ "$actual" != "$expected" ]; then
    printf '%s printed\n%s\nand not\n%s\n' "$1" "$actual" "$expected" >&2
    exit 1
  fi
}

cmake -S "$source/host/examples" -B "$work/examples" -DCMAKE_PREFIX_PATH="$work/moved" >/dev/null
cmake --build "$work/examples" >/dev/null
expect "$work/examples/draw" "$module"

PKG_CONFIG_PATH=$(find "$work/moved" -name vantorel-host.pc -printf '%h')
export PKG_CONFIG_PATH
# The flags are words of a command line each.
$CXX ${CXXFLAGS:-} -std=c++20 "$source/host/examples/draw.cpp" $(pkg-config --cflags --libs vantorel-host) \
  -o "$work/by_pkg_config"
expect "$work/by_pkg_config" "$module"
