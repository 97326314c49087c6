#!/usr/bin/env bash
# shape_qualities and VTK's vtkMeshQuality on the same 1M-element meshes, one after the other.
# Usage: bench/run_quality.sh [build directory, default build]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=${1:-build}
"$build/bench/quality_bench" --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
/usr/bin/python3 "$here/quality_vtk.py" 2>/dev/null || echo "comparison skipped: numpy or VTK missing"
