#!/usr/bin/env bash
# Builds the libFuzzer programs of fuzz/ with clang, AddressSanitizer and
# UndefinedBehaviorSanitizer in the sanitizer build (build-san), then runs
# each for FUZZ_SECONDS (30) from its seed corpus in fuzz/corpus/NAME with a
# fixed -seed, so that a run can be repeated. Fails on any crash; the input
# that crashed is left in build-san/fuzz/artifacts: add it to the target's
# corpus with the fix. Arguments name the targets to run (default: all).
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
build=${VRN_SAN_BUILD_DIR:-$top/build-san}
seconds=${FUZZ_SECONDS:-30}

VRN_SAN_BUILD_DIR=$build VRN_BUILD_TARGETS=fuzzers "$top/scripts/sanitize.sh" --build-only

if [ $# -gt 0 ]; then targets=("$@"); else mapfile -t targets < <(grep . "$build/fuzz/targets.txt"); fi
export ASAN_OPTIONS="detect_leaks=1"
# Suppressions name Qt frames: whole stacks are needed to match them.
export LSAN_OPTIONS="suppressions=$top/scripts/lsan.supp:print_suppressions=0:fast_unwind_on_malloc=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
export QT_QPA_PLATFORM=offscreen
mkdir -p "$build/fuzz/artifacts"
failed=()
for t in "${targets[@]}"; do
  # New inputs go to a scratch corpus; the committed seeds are only read.
  scratch=$build/fuzz/corpus/$t
  rm -rf "$scratch" && mkdir -p "$scratch" "$top/fuzz/corpus/$t"
  echo "[fuzz] $t: ${seconds}s" >&2
  if ! "$build/fuzz/$t" -seed=1 -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
       -print_final_stats=1 -artifact_prefix="$build/fuzz/artifacts/$t-" \
       "$scratch" "$top/fuzz/corpus/$t" > "$build/fuzz/$t.log" 2>&1; then
    tail -n 60 "$build/fuzz/$t.log" >&2
    failed+=("$t")
  else
    grep -E "stat::number_of_executed_units|stat::new_units_added" "$build/fuzz/$t.log" | tr '\n' ' ' >&2
    echo >&2
  fi
done
if [ ${#failed[@]} -gt 0 ]; then
  echo "fuzz: crashes in: ${failed[*]}" >&2
  exit 1
fi
