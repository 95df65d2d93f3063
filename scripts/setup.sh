#!/usr/bin/env bash
# Installs what the build needs (only when missing), configures and builds.
# Safe to run again: an existing build folder is reused.
# Other scripts pass more packages in VRN_EXTRA_PACKAGES (space-separated) and
# more CMake arguments as arguments; VRN_BUILD_TARGETS (space-separated)
# builds only those targets.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
build=${VRN_BUILD_DIR:-$top/build}

pkgs=(build-essential cmake qtbase5-dev libqt5serialport5-dev libqt5sql5-sqlite qtdeclarative5-dev qttools5-dev-tools
      pkg-config libsodium-dev libarchive-dev
      qtquickcontrols2-5-dev qml-module-qtquick2 qml-module-qtquick-controls2 qml-module-qtquick-templates2
      qml-module-qtquick-layouts qml-module-qtquick-window2 qml-module-qtqml-models2 qml-module-qttest
      qml-module-qtcharts libqt5charts5-dev)
read -r -a extra <<< "${VRN_EXTRA_PACKAGES:-}"
pkgs+=("${extra[@]}")
missing=()
for p in "${pkgs[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "[setup] installing: ${missing[*]}" >&2
  SUDO=; [ "$(id -u)" -ne 0 ] && SUDO=sudo
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -q >&2
  $SUDO apt-get install -y -q --no-install-recommends "${missing[@]}" >&2
fi

cmake -S "$top" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
targets=()
for t in ${VRN_BUILD_TARGETS:-}; do targets+=(--target "$t"); done
cmake --build "$build" -j"$(nproc)" "${targets[@]}" 2>&1 | grep -E "error|warning: unused|Error" >&2 || true
cmake --build "$build" -j"$(nproc)" "${targets[@]}" >/dev/null
