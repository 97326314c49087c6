#!/usr/bin/env bash
# Builds every fuzz/<name>_fuzz.cpp harness with libFuzzer (clang, ASan + UBSan) and runs each for
# the given number of seconds (default 60) on its seed corpus fuzz/corpus/<name>/. A crash fails.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
cxx=$(command -v clang++-14 || command -v clang++ || true)
if [ -z "$cxx" ]; then echo "no clang: fuzzers skipped"; exit 0; fi
out=fuzz-build
mkdir -p "$out"
flags=(-std=c++17 -O1 -g -fsanitize=fuzzer,address,undefined -fno-sanitize-recover=undefined -Iinclude -Isrc)
mapfile -t sources < <(find src -name '*.cpp' | sort)

# The library is compiled once into objects shared by every harness.
objs=()
for s in "${sources[@]}"; do
  o="$out/obj/${s//\//_}.o"
  mkdir -p "$out/obj"
  if [ ! -f "$o" ] || [ "$s" -nt "$o" ] || [ -n "$(find include -newer "$o" -name '*.h' -print -quit)" ]; then
    "$cxx" "${flags[@]/-fsanitize=fuzzer,address,undefined/-fsanitize=fuzzer-no-link,address,undefined}" -c "$s" -o "$o"
  fi
  objs+=("$o")
done

for harness in fuzz/*_fuzz.cpp; do
  name=$(basename "$harness" _fuzz.cpp)
  # Binaries are named <name>_fuzz, so that no harness name can clash with the obj/ folder.
  "$cxx" "${flags[@]}" "$harness" "${objs[@]}" -llapack -o "$out/${name}_fuzz"
  work="$out/corpus_$name"
  mkdir -p "$work"
  seeds=()
  [ -d "fuzz/corpus/$name" ] && seeds=("fuzz/corpus/$name")
  echo "== fuzzing $name for ${seconds}s"
  (cd "$out" && ./"${name}_fuzz" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
      -print_final_stats=1 "corpus_$name" "${seeds[@]/#/../}")
done
