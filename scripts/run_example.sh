#!/usr/bin/env bash
# Installs what is missing, builds the library and runs the main example: by default on its
# shipped sample, or on the STL file (and output prefix) given as arguments.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install_deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build -j"$(nproc)" --target weld_stl
./build/examples/weld_stl "$@"
