#!/usr/bin/env bash
# Builds the fuzz targets (clang, libFuzzer, AddressSanitizer and UndefinedBehaviorSanitizer)
# in build-fuzz and runs each for SECONDS (default 60) on its seed corpus fuzz/corpus/NAME.
# Prints one line per target: executions, coverage, and what was found. A crash, a sanitizer
# report, an input slower than a second or one that needs more than 256 MB is a finding: the
# input is kept in fuzz/findings/NAME/ and the script exits non-zero.
# FUZZ_RUNS=N also stops a target after N executions, whichever limit comes first.
# FUZZ_TIMEOUT=S and FUZZ_RSS_MB=M widen the two limits for long runs on a busy machine (the
# time limit is wall-clock) or where the sanitizer's allocator holds on to freed memory.
# Usage: scripts/fuzz.sh [SECONDS] [NAME...]
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
shift || true

CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DTIDEMAKE_TESTS=OFF -DTIDEMAKE_FUZZ=ON >/dev/null
cmake --build build-fuzz --target fuzzers -j "$(nproc)" >/dev/null

if [ $# -gt 0 ]; then
  targets=("$@")
else
  mapfile -t targets < <(ls fuzz/*.cpp | xargs -n1 basename | sed 's/\.cpp$//')
fi

# A small quarantine, so that memory freed by earlier inputs does not count against a later one.
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:quarantine_size_mb=16
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
found=0
for target in "${targets[@]}"; do
  # New inputs go to a corpus in the build tree, so the committed seeds stay as they are.
  work=build-fuzz/corpus/$target
  findings=fuzz/findings/$target
  log=build-fuzz/logs/$target.log
  mkdir -p "$work" "$findings" build-fuzz/logs
  status=0
  "build-fuzz/fuzz/$target" "$work" "fuzz/corpus/$target" -max_total_time="$seconds" \
    -runs="${FUZZ_RUNS:--1}" \
    -timeout="${FUZZ_TIMEOUT:-1}" -rss_limit_mb="${FUZZ_RSS_MB:-256}" -max_len=4096 -print_final_stats=1 \
    -artifact_prefix="$findings/" >"$log" 2>&1 || status=$?
  executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  elapsed=$(sed -n 's/^Done [0-9]* runs in \([0-9]*\) second.*/\1/p' "$log" | tail -1)
  coverage=$(grep -o 'cov: [0-9]* ft: [0-9]*' "$log" | tail -1 || true)
  if [ "$status" -eq 0 ]; then
    result="nothing found"
  else
    found=1
    artifact=$(sed -n 's/.*Test unit written to \(.*\)$/\1/p' "$log" | tail -1)
    result="FOUND (exit $status): ${artifact:-see $log}"
  fi
  printf '%-18s %10s executions in %5s s, %-20s %s\n' "$target" "${executions:-?}" \
    "${elapsed:-?}" "${coverage:-cov: ?}," "$result"
done
exit "$found"
