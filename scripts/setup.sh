#!/usr/bin/env bash
# Installs what the build needs (only when missing), configures and builds.
# Safe to run again: an existing build folder is reused.
# Other scripts pass more packages in VRN_EXTRA_PACKAGES (space-separated) and
# more CMake arguments as arguments; VRN_BUILD_TARGETS (space-separated)
# builds only those targets. VRN_QT=6 builds against Qt 6 (in build-qt6 unless
# VRN_BUILD_DIR says otherwise); the default is Qt 5.15.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
qt=${VRN_QT:-5}

pkgs=(build-essential cmake pkg-config libsodium-dev libarchive-dev)
if [ "$qt" = 6 ]; then
  build=${VRN_BUILD_DIR:-$top/build-qt6}
  pkgs+=(qt6-base-dev qt6-serialport-dev qt6-declarative-dev libqt6sql6-sqlite qt6-scxml-dev qt6-charts-dev
         qt6-tools-dev qt6-tools-dev-tools qt6-l10n-tools
         qml6-module-qtqml qml6-module-qtquick qml6-module-qtquick-controls qml6-module-qtquick-templates
         qml6-module-qtquick-layouts qml6-module-qtquick-window qml6-module-qtqml-models
         qml6-module-qtqml-workerscript qml6-module-qttest qml6-module-qtcharts)
else
  build=${VRN_BUILD_DIR:-$top/build}
  pkgs+=(qtbase5-dev libqt5serialport5-dev libqt5sql5-sqlite qtdeclarative5-dev qttools5-dev-tools
         qtquickcontrols2-5-dev qml-module-qtquick2 qml-module-qtquick-controls2 qml-module-qtquick-templates2
         qml-module-qtquick-layouts qml-module-qtquick-window2 qml-module-qtqml-models2 qml-module-qttest
         qml-module-qtcharts libqt5charts5-dev)
fi
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

qtarg=(); [ -n "${VRN_QT:-}" ] && qtarg=(-DVRN_QT="$VRN_QT")
cmake -S "$top" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo "${qtarg[@]}" "$@" >/dev/null
targets=()
for t in ${VRN_BUILD_TARGETS:-}; do targets+=(--target "$t"); done
cmake --build "$build" -j"$(nproc)" "${targets[@]}" 2>&1 | grep -E "error|warning: unused|Error" >&2 || true
cmake --build "$build" -j"$(nproc)" "${targets[@]}" >/dev/null
