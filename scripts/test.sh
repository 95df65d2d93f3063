#!/usr/bin/env bash
# Builds everything and runs every test under CTest, headless.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
build=${VRN_BUILD_DIR:-$top/build}
"$top/scripts/setup.sh"
export QT_QPA_PLATFORM=offscreen
cd "$build"
ctest --output-on-failure -j"$(nproc)" "$@"
