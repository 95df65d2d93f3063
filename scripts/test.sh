#!/usr/bin/env bash
# Builds everything and runs every test under CTest, headless.
# VRN_QT=6 builds and tests against Qt 6, in build-qt6.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
if [ "${VRN_QT:-5}" = 6 ]; then build=${VRN_BUILD_DIR:-$top/build-qt6}; else build=${VRN_BUILD_DIR:-$top/build}; fi
"$top/scripts/setup.sh"
# The capture test reads vrnconfig's pcap files back with tshark.
if ! command -v tshark >/dev/null; then
  echo "[test] installing: tshark" >&2
  SUDO=; [ "$(id -u)" -ne 0 ] && SUDO=sudo
  export DEBIAN_FRONTEND=noninteractive
  { $SUDO apt-get update -q && $SUDO apt-get install -y -q --no-install-recommends tshark; } >&2 \
    || echo "[test] tshark could not be installed: the capture check is skipped" >&2
fi
# The report test reads vrnconfig's PDF back with pdftotext.
if ! command -v pdftotext >/dev/null; then
  echo "[test] installing: poppler-utils" >&2
  SUDO=; [ "$(id -u)" -ne 0 ] && SUDO=sudo
  export DEBIAN_FRONTEND=noninteractive
  { $SUDO apt-get update -q && $SUDO apt-get install -y -q --no-install-recommends poppler-utils; } >&2 \
    || echo "[test] poppler-utils could not be installed: the report check is skipped" >&2
fi
export QT_QPA_PLATFORM=offscreen
cd "$build"
ctest --output-on-failure -j"$(nproc)" "$@"
