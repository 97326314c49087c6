#!/usr/bin/env bash
# Installs the Debian packages listed in .ci/packages that are missing, or only the packages named
# as arguments. Uses sudo when not root.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
required=() optional=() section=required
[ $# -gt 0 ] && required=("$@")
[ $# -gt 0 ] || while read -r line; do
  line=${line%%#*}; line=$(echo "$line" | xargs)
  [ -z "$line" ] && continue
  if [ "$line" = "optional:" ]; then section=optional; continue; fi
  if [ "$section" = required ]; then required+=("$line"); else optional+=("$line"); fi
done < "$here/.ci/packages"

missing() { for p in "$@"; do dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || echo "$p"; done; }
sudo_cmd=""; [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
need=$(missing "${required[@]}")
want=$(missing "${optional[@]+"${optional[@]}"}")
if [ -n "$need$want" ]; then
  export DEBIAN_FRONTEND=noninteractive
  $sudo_cmd apt-get update -qq || true
fi
if [ -n "$need" ]; then
  # shellcheck disable=SC2086
  $sudo_cmd apt-get install -y -qq --no-install-recommends $need
fi
for p in $want; do
  $sudo_cmd apt-get install -y -qq --no-install-recommends "$p" || echo "optional package $p not installed"
done
