#!/usr/bin/env bash
# Runs benchmarks in the Qt 5.15 build (build/) and the Qt 6 build
# (build-qt6/) one after the other and prints their figures side by side:
# each line of output once, every number as "Qt5|Qt6" followed by the change
# in percent where both runs printed a number there.
#
#     bash scripts/benchcompare.sh [BENCH [ARGS...]]   (default: the registry,
#                                                      bus and discovery benchmarks)
# VRN_BUILD_DIR and VRN_QT6_BUILD_DIR name other build folders. VRN_BENCH_RUNS=N
# (default 1) runs each benchmark N times, Qt 5.15 and Qt 6 taking turns so
# that a change of machine load falls on both, and prints the median of each
# figure: a difference of 10 % needs it on a machine that is not idle.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
qt5=${VRN_BUILD_DIR:-$top/build}
qt6=${VRN_QT6_BUILD_DIR:-$top/build-qt6}
export QT_QPA_PLATFORM=offscreen
if [ $# -gt 0 ]; then runs=("$*"); else runs=(bench_objectregistry bench_bus bench_discovery); fi
# Prints the first file with every number replaced by the median of the
# numbers in the same place of every file (lines and words taken in order).
median() {
  paste "$@" | awk -F '\t' '
    function isnum(s) { return s ~ /^[-+]?[0-9]*\.?[0-9]+([eE][-+]?[0-9]+)?$/ }
    {
      n = split($1, a, /[ \t(),;=:|]+/)
      for (f = 2; f <= NF; ++f) { m[f] = split($f, w, /[ \t(),;=:|]+/); for (i = 1; i <= m[f]; ++i) t[f, i] = w[i] }
      res = ""; rest = $1
      for (i = 1; i <= n; ++i) {
        if (a[i] == "") continue
        p = index(rest, a[i]); res = res substr(rest, 1, p - 1); rest = substr(rest, p + length(a[i]))
        if (!isnum(a[i])) { res = res a[i]; continue }
        k = 0; v[++k] = a[i] + 0
        for (f = 2; f <= NF; ++f) if (m[f] == n && isnum(t[f, i])) v[++k] = t[f, i] + 0
        for (x = 2; x <= k; ++x) for (y = x; y > 1 && v[y - 1] > v[y]; --y) { z = v[y]; v[y] = v[y - 1]; v[y - 1] = z }
        med = (k % 2) ? v[(k + 1) / 2] : (v[k / 2] + v[k / 2 + 1]) / 2
        d = index(a[i], ".") ? length(a[i]) - index(a[i], ".") : 0
        res = res sprintf("%." d "f", med)
      }
      print res rest
    }'
}
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
for run in "${runs[@]}"; do
  read -r -a cmd <<< "$run"
  for b in "$qt5" "$qt6"; do
    [ -x "$b/bin/${cmd[0]}" ] || { echo "benchcompare: no $b/bin/${cmd[0]}" >&2; exit 1; }
  done
  for ((r = 1; r <= ${VRN_BENCH_RUNS:-1}; ++r)); do
    "$qt5/bin/${cmd[0]}" "${cmd[@]:1}" > "$out/5.$r" 2>/dev/null
    "$qt6/bin/${cmd[0]}" "${cmd[@]:1}" > "$out/6.$r" 2>/dev/null
  done
  median "$out"/5.* > "$out/5"
  median "$out"/6.* > "$out/6"
  printf '\n== %s  (each figure Qt 5.15|Qt 6, change)\n' "$run"
  # Lines are paired in order; a line whose words differ is printed from both.
  paste "$out/5" "$out/6" | awk -F '\t' '
    function isnum(s) { return s ~ /^[-+]?[0-9]*\.?[0-9]+([eE][-+]?[0-9]+)?$/ }
    {
      n5 = split($1, a, /[ \t(),;=:]+/); n6 = split($2, b, /[ \t(),;=:]+/)
      line = $1; same = (n5 == n6)
      for (i = 1; same && i <= n5; ++i) if (!(isnum(a[i]) && isnum(b[i])) && a[i] != b[i]) same = 0
      if (!same) { print "  Qt 5.15: " $1; print "  Qt 6:    " $2; next }
      res = ""; rest = $1
      for (i = 1; i <= n5; ++i) {
        if (a[i] == "") continue
        p = index(rest, a[i]); res = res substr(rest, 1, p - 1); rest = substr(rest, p + length(a[i]))
        if (isnum(a[i]) && a[i] != b[i]) {
          ch = (a[i] + 0 != 0) ? sprintf(" %+.0f%%", (b[i] - a[i]) * 100 / a[i]) : ""
          res = res a[i] "|" b[i] ch
        } else res = res a[i]
      }
      print res rest
    }'
done
