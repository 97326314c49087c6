#!/usr/bin/env bash
# Installs what the example needs (g++, CMake, LAPACK), builds the library and runs the main
# example: by default on its shipped sample, or on the STL file (and output prefix) given as
# arguments. Paths are taken from the caller's folder, and the outputs are written there.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/install_deps.sh" g++ cmake make liblapack-dev
cmake -S "$root" -B "$root/build" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$root/build" -j"$(nproc)" --target weld_stl
"$root/build/examples/weld_stl" "$@"
