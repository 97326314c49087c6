#!/usr/bin/env bash
# Installs what is missing, builds the library and runs the main example on its shipped sample.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install_deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build -j"$(nproc)" --target mesh_tour
./build/examples/mesh_tour "$@"
