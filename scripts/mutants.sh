#!/usr/bin/env bash
# Plants one deliberate fault at a time in the library, rebuilds the test binary, runs it and
# tells whether the suite caught the fault. Each fault is a literal replacement of the first
# occurrence of a text in one source; the source is restored afterwards.
# Usage: scripts/mutants.sh [build-dir] [name-filter]
set -uo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
only=${2:-}

# name @ file @ text @ replacement
mutants=$(cat <<'LIST'
sieve_close_flipped@src/connectivity/siever.cpp@if (s[pos + 1] != vacant) close_chain@if (s[pos + 1] == vacant) close_chain
sieve_append_flipped@src/connectivity/siever.h@if (open_ || added == 2 * bucket_count_)@if (open_ || added != 2 * bucket_count_)
nastran_fixed_field_wide@src/exchange/nastran_input.cpp@%8d%8d%8d %c"@%8d%8d%9d %c"
nastran_free_token_short@src/exchange/nastran_input.cpp@std::min<std::size_t>(length, 8)@std::min<std::size_t>(length, 7)
femap_node_column@src/exchange/femap_input.cpp@pos.col(static_cast<std::size_t>(ID) - 1)@pos.col(static_cast<std::size_t>(ID) - 0)
stl_binary_facet_size@src/exchange/stl_binary_input.cpp@facet_bytes = 50@facet_bytes = 49
group_reversed_code@src/exchange/group_checks.cpp@if (last < first) return -4;@if (last < first) return -5;
stl_output_pos_code@src/exchange/stl_output.cpp@pos.rows() != 3) return -2;@pos.rows() != 3) return -3;
cube_test_open@src/search/point_tests.h@c[k] <= p[k] + d)@c[k] < p[k] + d)
wedge_boundary_nodes@src/connectivity/elfes.h@{2, 4, 4, 5, 3}@{2, 4, 5, 4, 3}
nastran_writer_tetra10@src/exchange/nastran_tables.h@{0, 2, 1, 3, 5, 4, 6, 7, 9, 8}},   @{0, 2, 1, 3, 4, 5, 6, 7, 9, 8}},   
neighbors_modes_swapped@src/connectivity/get_neighbors.cpp@non_manifold ? 0 : 1@non_manifold ? 1 : 0
sink_padding_short@src/exchange/text_sink.h@if (length < width) length@if (length + 1 < width) length
obj_texture_arity@src/exchange/wavefront_obj.cpp@values.size() >= 4) return -2@values.size() > 4) return -2
LIST
)

caught=0 missed=0
while IFS='@' read -r name file from to; do
  [ -n "$only" ] && [[ "$name" != *"$only"* ]] && continue
  cp "$file" "$file.orig"
  FROM="$from" TO="$to" perl -0pi -e 's/\Q$ENV{FROM}\E/$ENV{TO}/' "$file"
  if cmp -s "$file" "$file.orig"; then
    echo "$name: NOT APPLIED (text not found in $file)"
    mv "$file.orig" "$file"
    continue
  fi
  if ! cmake --build "$build" -j2 --target tessarium_tests >/dev/null 2>&1; then
    result="does not compile"
  else
    log=$(mktemp)
    # A fault that makes a loop endless is caught by the time limit.
    timeout 120 "$build/tests/tessarium_tests" --gtest_brief=1 >"$log" 2>&1
    status=$?
    failed=$(grep -c '^\[  FAILED  \] [A-Za-z]*\.' "$log")
    rm -f "$log"
    if [ "$failed" -gt 0 ] || [ "$status" -ne 0 ]; then
      result="caught ($failed failing tests)"; caught=$((caught + 1))
    else
      result="MISSED"; missed=$((missed + 1))
    fi
  fi
  echo "$name: $result"
  mv "$file.orig" "$file"
  touch "$file"
done <<<"$mutants"
cmake --build "$build" -j2 --target tessarium_tests >/dev/null 2>&1
echo "$caught caught, $missed missed"
