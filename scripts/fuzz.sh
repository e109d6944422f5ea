#!/usr/bin/env bash
# Builds the libFuzzer targets of fuzz/ (clang-14, AddressSanitizer and
# UndefinedBehaviorSanitizer, in build-fuzz/) and runs each for a given
# time, one after the other, at low priority. Fails when a target finds a
# crash, a leak, a sanitizer report, a timeout or a broken property.
#
#   scripts/fuzz.sh [SECONDS] [TARGET...]   default: 60 s, every target
#   scripts/fuzz.sh --seeds                 rewrites the seeds of fuzz/corpus/
#                                           that the library's writers make
#                                           (needs the test fonts of build/)
#
# The committed seeds (fuzz/corpus/TARGET) are read only; what a run
# discovers goes to build-fuzz/corpus/TARGET and is reused by later runs.
# Findings are kept as build-fuzz/artifacts/TARGET-*.
set -euo pipefail
cd "$(dirname "$0")/.."

dir=build-fuzz
CC=clang-14 CXX=clang++-14 cmake -S fuzz -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
nice -n 10 cmake --build "$dir" -j2 >/dev/null

if [ "${1:-}" = "--seeds" ]; then
  fonts=build/tests/fonts
  [ -f "$fonts/fonts.txt" ] || { echo "fuzz: build the tests first (cmake --build build)"; exit 1; }
  rm -rf fuzz/corpus/{analyzer,ftable,fdata,fi,package}
  "$dir/make_seeds" "$fonts" fuzz/corpus
  echo "fuzz: seeds written to fuzz/corpus"
  exit 0
fi

seconds=${1:-60}
shift || true
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  targets=(ftable fdata fi lists package analyzer run)
fi

mkdir -p "$dir/artifacts"
status=0
for target in "${targets[@]}"; do
  work="$dir/corpus/$target"
  mkdir -p "$work"
  log="$dir/$target.log"
  echo "=== fuzz $target (${seconds} s) ==="
  if nice -n 10 "$dir/${target}_fuzzer" "$work" "fuzz/corpus/$target" \
       -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 -print_final_stats=1 \
       -artifact_prefix="$dir/artifacts/$target-" >"$log" 2>&1; then
    runs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$' || echo '?')
    echo "fuzz $target: clean, $runs runs"
  else
    status=1
    echo "fuzz $target: FINDING (log $log)"
    grep -E 'ERROR|SUMMARY|property violated|runtime error' "$log" | head -20 || true
    ls "$dir/artifacts/$target-"* 2>/dev/null || true
  fi
done
exit $status
