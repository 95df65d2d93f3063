#!/usr/bin/env bash
# Builds the whole suite with clang, AddressSanitizer and
# UndefinedBehaviorSanitizer in its own build folder (build-san), runs every
# test there, and fails on any report, including reports of programs the tests
# start (vrnsim, vrnconfig). Arguments go to ctest (for example -R tst_vrnobject);
# --build-only only builds (VRN_BUILD_TARGETS: which targets).
# The same build holds the fuzz targets (scripts/fuzz.sh): the code is
# instrumented for libFuzzer too, so that one build serves both.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
build=${VRN_SAN_BUILD_DIR:-$top/build-san}
flags="-O1 -g -fno-omit-frame-pointer -fsanitize=address,undefined,fuzzer-no-link -fno-sanitize-recover=all"

VRN_EXTRA_PACKAGES="clang libclang-rt-14-dev" VRN_BUILD_DIR=$build "$top/scripts/setup.sh" \
  -DVRN_FUZZ=ON -DCMAKE_BUILD_TYPE=None -DCMAKE_CXX_COMPILER=clang++ "-DCMAKE_CXX_FLAGS=$flags" \
  "-DCMAKE_EXE_LINKER_FLAGS=-fsanitize=address,undefined" \
  "-DCMAKE_SHARED_LINKER_FLAGS=-fsanitize=address,undefined" -DVRN_TEST_TIMEOUT_SCALE=4
[ "${1:-}" = --build-only ] && exit 0

# Every report lands in a file of its own under $reports, whoever wrote it;
# a report also ends the program with a failure.
reports=$build/sanitizer-reports
rm -rf "$reports" && mkdir -p "$reports"
export ASAN_OPTIONS="log_path=$reports/asan:detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=1"
export UBSAN_OPTIONS="log_path=$reports/ubsan:print_stacktrace=1:halt_on_error=1"
export LSAN_OPTIONS="suppressions=$top/scripts/lsan.supp:print_suppressions=0"
export QT_QPA_PLATFORM=offscreen

status=0
(cd "$build" && ctest --output-on-failure -j"$(nproc)" "$@") || status=$?
shopt -s nullglob
found=("$reports"/*)
if [ ${#found[@]} -gt 0 ]; then
  echo "sanitize: ${#found[@]} report(s):" >&2
  for f in "${found[@]}"; do
    echo "==== $f" >&2
    cat "$f" >&2
  done
  exit 1
fi
exit "$status"
