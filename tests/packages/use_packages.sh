#!/usr/bin/env bash
# use_packages.sh PREFIX SOURCE WORK: uses what the packages install below PREFIX: programs built against the libraries by
# CMake and by pkg-config, the command, the filter and the Python module. SOURCE holds the examples.
set -euo pipefail
prefix=$1 source=$2 work=$3
mkdir -p "$work"
cd "$work"

expect() {
  local expected=$1 actual
  shift
  actual=$("$@")
  [ "$actual" = "$expected" ] || { printf '%s printed\n%s\nand not\n%s\n' "$*" "$actual" "$expected" >&2; exit 1; }
}
drawn='rows 0 to 48; alpha 255 in the middle, 0 in a corner'
linked=$'1001 frames last 1002001/30000 seconds\n(10, 20) moves to (80.0, 10.0)'
loaded=$'1/3 + 1/6 = 3/6\nscaled about (10, 10), the origin moves to (-10.0, -10.0)'
module=$(find "$prefix/lib" -path '*/vantorel/vantorel.so')
libraries=$(dirname "$(find "$prefix/lib" -name libvantorel_host.a)")
export LD_LIBRARY_PATH=$libraries PKG_CONFIG_PATH=$libraries/pkgconfig

for examples in host/examples math/examples docs/examples/minimal-host; do
  cmake -S "$source/$examples" -B "$examples" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
  cmake --build "$examples" >/dev/null
done
expect "$drawn" host/examples/draw "$module"
expect "$linked" math/examples/linked
expect "$linked" math/examples/linked_shared
expect "$loaded" math/examples/loaded "$module"

# The flags are words of a command line each.
c++ -std=c++20 "$source/host/examples/draw.cpp" $(pkg-config --cflags --libs vantorel-host) -o draw
expect "$drawn" ./draw "$module"
c++ -std=c++17 "$source/math/examples/linked.cpp" $(pkg-config --cflags --libs vantorel_math) -o linked
expect "$linked" ./linked

"$prefix/bin/vantorel" testcard -o card.png --size 320x180
"$prefix/bin/vantorel" render card.png -o out.png --ul 40,20 --ur 280,0 --ll 0,180 --lr 320,150
for text in share/man/man1/vantorel.1.gz share/doc/vantorel/changelog.gz share/doc/frei0r-vantorel/copyright \
    OFX/Plugins/Vantorel.ofx.bundle/Contents/Info.plist; do
  [ -s "$prefix/$text" ] || { echo "$text is missing" >&2; exit 1; }
done

export PYTHONPATH=$prefix/lib/python3/dist-packages
expect '(4, 6, 3) 9' /usr/bin/python3 -c '
import numpy, vantorel
picture = vantorel.warp(numpy.full((4, 6, 3), 9, numpy.uint8), None)
print(picture.shape, picture.min())'
expect 1 /usr/bin/python3 -c 'import ctypes, sys; print(ctypes.CDLL(sys.argv[1]).f0r_init())' \
  "$prefix/lib/frei0r-1/vantorel.so"
