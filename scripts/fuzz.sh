#!/usr/bin/env bash
# Builds every fuzz/<name>_fuzz.cpp harness with libFuzzer (clang, ASan + UBSan, CMake option
# TESSARIUM_BUILD_FUZZ) and runs each for the given number of seconds (default 60) from its seeds
# in fuzz/corpus/<name>/. A crash, a breached check or a slow input (2 s for merge, 10 s for the
# readers) fails. With --grow, a minimal set of the run's inputs that reach code no seed reaches
# joins fuzz/corpus/<name>/ (libFuzzer's -merge=1 on edges). Logs: fuzz-build/<name>.log.
#   scripts/fuzz.sh [--grow] [SECONDS [NAME...]]
set -euo pipefail
cd "$(dirname "$0")/.."
grow=0
if [ "${1:-}" = --grow ]; then grow=1; shift; fi
seconds=${1:-60}
shift || true
cxx=$(command -v clang++-14 || command -v clang++ || true)
if [ -z "$cxx" ]; then echo "no clang: fuzzers skipped"; exit 0; fi
out=fuzz-build
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
cmake -S . -B "$out" -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTESSARIUM_BUILD_FUZZ=ON \
  -DTESSARIUM_BUILD_TESTS=OFF -DTESSARIUM_BUILD_BENCH=OFF -DTESSARIUM_BUILD_EXAMPLES=OFF "${launcher[@]}" >/dev/null

names=("$@")
if [ ${#names[@]} -eq 0 ]; then
  for harness in fuzz/*_fuzz.cpp; do names+=("$(basename "$harness" _fuzz.cpp)"); done
fi
cmake --build "$out" -j"$(nproc)" --target "${names[@]/%/_fuzz}"

for name in "${names[@]}"; do
  limit=10
  [ "$name" = merge ] && limit=2
  work="$out/corpus_$name"
  mkdir -p "$work" "fuzz/corpus/$name"
  echo "== fuzzing $name for ${seconds}s"
  status=0
  "$out/fuzz/${name}_fuzz" -max_total_time="$seconds" -timeout="$limit" -rss_limit_mb=2048 \
    -artifact_prefix="$out/${name}_" -print_final_stats=1 "$work" "fuzz/corpus/$name" >"$out/$name.log" 2>&1 ||
    status=$?
  grep -E "^#[0-9]+ +DONE|^stat::number_of_executed_units" "$out/$name.log" || true
  if [ "$status" -ne 0 ]; then
    tail -n 40 "$out/$name.log"
    echo "fuzzing $name failed: see $out/$name.log and $out/${name}_*"
    exit 1
  fi
  if [ "$grow" = 1 ]; then
    "$out/fuzz/${name}_fuzz" -merge=1 -use_counters=0 "fuzz/corpus/$name" "$work" >"$out/$name.merge.log" 2>&1
  fi
done
