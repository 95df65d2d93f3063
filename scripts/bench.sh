#!/usr/bin/env bash
# Builds and runs every benchmark; each prints its own figures.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
build=${VRN_BUILD_DIR:-$top/build}
"$top/scripts/setup.sh"
export QT_QPA_PLATFORM=offscreen
for b in bench_bus bench_listener bench_objectregistry bench_discovery bench_motor bench_groups; do
  [ -x "$build/bin/$b" ] || continue
  printf '\n== %s\n' "$b"
  "$build/bin/$b"
done
