#!/usr/bin/env bash
# The whole test suite: release build, sanitizer build (AddressSanitizer + UndefinedBehaviorSanitizer),
# then a short run of every fuzz harness. Fails when anything fails.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc)
scripts/install_deps.sh
scripts/check_format.sh  # the house style of .clang-format, on every C++ file
werror=$([ "${CI:-}" = true ] && echo ON || echo OFF)

cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -DTESSARIUM_WERROR="$werror"
cmake --build build -j"$jobs"
ctest --test-dir build --output-on-failure -j"$jobs"
if command -v doxygen >/dev/null; then cmake --build build --target docs; fi  # fails on any warning

cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=Debug -DTESSARIUM_SANITIZE=ON -DTESSARIUM_WERROR="$werror" \
  -DTESSARIUM_BUILD_BENCH=OFF -DTESSARIUM_BUILD_EXAMPLES=OFF
cmake --build build-asan -j"$jobs"
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build-asan --output-on-failure -j"$jobs"

# The library keeps no state: its calls on separate data run side by side under ThreadSanitizer.
cmake -S . -B build-tsan -DCMAKE_BUILD_TYPE=Debug -DTESSARIUM_SANITIZE_THREAD=ON -DTESSARIUM_WERROR="$werror" \
  -DTESSARIUM_BUILD_BENCH=OFF -DTESSARIUM_BUILD_EXAMPLES=OFF
cmake --build build-tsan -j"$jobs" --target tessarium_tests
TSAN_OPTIONS=halt_on_error=1 build-tsan/tests/tessarium_tests --gtest_filter='Concurrency.*'

if compgen -G "fuzz/*_fuzz.cpp" >/dev/null; then
  seconds=${TESSARIUM_FUZZ_SECONDS:-$([ "${CI:-}" = true ] && echo 60 || echo 10)}
  scripts/fuzz.sh "$seconds"
fi
echo "all tests passed"
