#!/usr/bin/env bash
# Our writers and the other programs' writers on the same 1M-tetrahedra mesh, one after the other.
# Usage: bench/run_writers.sh [build directory, default build]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=${1:-build}
"$build/bench/writers_bench" --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
/usr/bin/python3 "$here/writers_compare.py" 2>/dev/null || echo "comparison skipped: numpy, meshio or VTK missing"
