#!/usr/bin/env bash
# check_pip.sh PYTHON SOURCE BUILD WORK: installs the module of the folder BUILD by pip and warps with it.
set -euo pipefail
python=$1 source=$2 build=$3 work=$4
rm -rf "$work"
"$python" -m pip install --quiet --disable-pip-version-check --no-index --no-deps --no-cache-dir \
  --config-settings build-dir="$build" --target "$work" "$source"
cd "$work"
PYTHONPATH=$work "$python" -c '
import importlib.metadata, numpy, vantorel
assert vantorel.__file__.startswith("'"$work"'"), vantorel.__file__
assert importlib.metadata.version("vantorel") == vantorel.__version__
assert (vantorel.warp(numpy.full((4, 6), 7, numpy.uint16), None) == 7).all()'
