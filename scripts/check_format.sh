#!/usr/bin/env bash
# Lists the C++ files of the tree that clang-format (style in .clang-format) would change, and fails
# when there is any. With --fix, reformats them in place instead.
set -euo pipefail
cd "$(dirname "$0")/.."
cf=$(command -v clang-format-14 || command -v clang-format || true)
if [ -z "$cf" ]; then echo "no clang-format"; exit 1; fi
mapfile -t files < <(git ls-files '*.cpp' '*.h')
if [ "${1:-}" = --fix ]; then "$cf" -i "${files[@]}"; exit 0; fi
bad=0
for f in "${files[@]}"; do
  if ! "$cf" "$f" | cmp -s - "$f"; then echo "$f"; bad=1; fi
done
[ "$bad" = 0 ] && echo "format clean"
exit "$bad"
