#!/usr/bin/env bash
# check_install.sh BUILD SOURCE MODULE WORK: installs the math library from the folder BUILD, moves the installed tree,
# and builds and runs the example programs against it by CMake and by pkg-config. CXX and CXXFLAGS say how the library
# was compiled.
set -euo pipefail

build=$1 source=$2 module=$3 work=$4
rm -rf "$work"
mkdir -p "$work"
for component in math math-runtime; do
  cmake --install "$build" --prefix "$work/first" --component "$component" >/dev/null
done
mv "$work/first" "$work/moved"

expect() {
  local expected=$1 actual
  shift
  actual=$("$@")
  if [ "$actual" != "$expected" ]; then
    printf '%s printed\n%s\nand not\n%s\n' "$1" "$actual" "$expected" >&2
    exit 1
  fi
}
linked=$'1001 frames last 1002001/30000 seconds\n(10, 20) moves to (80.0, 10.0)'
loaded=$'1/3 + 1/6 = 3/6\nscaled about (10, 10), the origin moves to (-10.0, -10.0)'

cmake -S "$source/math/examples" -B "$work/examples" -DCMAKE_PREFIX_PATH="$work/moved" >/dev/null
cmake --build "$work/examples" >/dev/null
expect "$linked" "$work/examples/linked"
expect "$linked" "$work/examples/linked_shared"
expect "$loaded" "$work/examples/loaded" "$module"

pkgconfig=$(find "$work/moved" -name vantorel_math.pc -printf '%h')
export PKG_CONFIG_PATH=$pkgconfig
libdir=$(pkg-config --variable=libdir vantorel_math)
# The flags are words of a command line each.
$CXX ${CXXFLAGS:-} -std=c++17 "$source/math/examples/linked.cpp" $(pkg-config --cflags --libs vantorel_math) \
  -Wl,-rpath,"$libdir" -o "$work/by_pkg_config"
expect "$linked" "$work/by_pkg_config"
