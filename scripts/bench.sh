#!/usr/bin/env bash
# Runs every comparison of bench/ (libkelfont against HarfBuzz, FreeType and
# fontconfig on the same fonts, text and machine) and writes
# docs/PERFORMANCE.md: medians of the repetitions and their ratios.
#   KELFONT_BENCH_REPETITIONS=N   repetitions of each benchmark (default 5)
#   KELFONT_JOBS=N                parallel build jobs (default 2)
#   KELFONT_ANDROID_FONTS=DIR     also measure on the Android set (scripts/android-fonts.sh DIR)
set -euo pipefail
cd "$(dirname "$0")/.."

if [ "$(id -u)" = 0 ] || command -v sudo >/dev/null 2>&1; then
  bash scripts/install-deps.sh
fi

build=build-bench
reps=${KELFONT_BENCH_REPETITIONS:-5}
echo "=== build ($build, Release)"
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DKELFONT_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" -j"${KELFONT_JOBS:-2}" --target kelfont_bench >/dev/null
bench=$build/bench/kelfont_bench
results=$build/results
mkdir -p "$results"

# Scratch folders in memory for the main run, on disk for the second.
memory_tmp=/dev/shm
[ -d "$memory_tmp" ] && [ -w "$memory_tmp" ] || memory_tmp=${TMPDIR:-/tmp}
disk_tmp=$PWD/$build/scratch
mkdir -p "$disk_tmp"
common=(--benchmark_repetitions="$reps" --benchmark_report_aggregates_only=true
        --benchmark_out_format=json)

echo "=== every benchmark, $reps repetitions (scratch in $memory_tmp)"
TMPDIR=$memory_tmp "$bench" "${common[@]}" --benchmark_out="$results/memory.json" >/dev/null
echo "=== start-up again, scratch on disk ($disk_tmp)"
TMPDIR=$disk_tmp "$bench" "${common[@]}" --benchmark_filter='ColdStart|WarmStart/(kelfont|fontconfig)/' \
  --benchmark_out="$results/disk.json" >/dev/null

# Sync calls of a first start on the Android set and of the warm start after
# it (the benchmark program's start-up child, no package), and of fc-cache.
syncs=$results/syncs.txt
: > "$syncs"
if [ -n "${KELFONT_ANDROID_FONTS:-}" ] && command -v strace >/dev/null 2>&1; then
  scratch=$(mktemp -d "$memory_tmp/kelfont-syncs.XXXXXX")
  count() { awk '$NF ~ /^(fsync|fdatasync|syncfs|sync)$/ {n += $4} END {print n + 0}' "$1"; }
  for start in cold warm; do
    strace -f -c -e trace=fsync,fdatasync,syncfs,sync -o "$scratch/$start.txt" \
      "$bench" --rss-child "$scratch/storage/" "$scratch/no-package/" "$KELFONT_ANDROID_FONTS" 0 >/dev/null
    echo "kelfont_$start $(count "$scratch/$start.txt")" >> "$syncs"
  done
  printf '<?xml version="1.0"?>\n<fontconfig><dir>%s</dir><cachedir>%s</cachedir></fontconfig>\n' \
    "$KELFONT_ANDROID_FONTS" "$scratch/fc-cache" > "$scratch/fonts.conf"
  FONTCONFIG_FILE=$scratch/fonts.conf strace -f -c -e trace=fsync,fdatasync,syncfs,sync \
    -o "$scratch/fc.txt" fc-cache -f >/dev/null
  echo "fc_cache $(count "$scratch/fc.txt")" >> "$syncs"
  rm -rf "$scratch"
fi

version() { pkg-config --modversion "$1" 2>/dev/null || echo unknown; }
{
  echo "CPU: $(grep -m1 'model name' /proc/cpuinfo | cut -d: -f2- | sed 's/^ *//'), $(nproc) cores"
  echo "Memory: $(awk '/MemTotal/ {printf "%.0f GiB", $2 / 1048576}' /proc/meminfo)"
  echo "System: $(. /etc/os-release && echo "$PRETTY_NAME"), Linux $(uname -r)"
  echo "Compiler: $(c++ --version | head -1), Release build (-O3)"
  echo "Peers: FreeType $(dpkg-query -W -f='${Version}' libfreetype6 2>/dev/null || version freetype2), HarfBuzz $(version harfbuzz), fontconfig $(version fontconfig); Google Benchmark $(dpkg-query -W -f='${Version}' libbenchmark-dev 2>/dev/null || echo unknown)"
  echo "Fonts: $(ls /usr/share/fonts/truetype/dejavu /usr/share/fonts/truetype/liberation /usr/share/fonts/truetype/nanum /usr/share/fonts/opentype/noto 2>/dev/null | grep -cE '\.(ttf|otf|ttc)$') files in $(for d in dejavu liberation nanum; do [ -d /usr/share/fonts/truetype/$d ] && printf '%s ' $d; done)$([ -d /usr/share/fonts/opentype/noto ] && echo noto)"
  if [ -n "${KELFONT_ANDROID_FONTS:-}" ]; then
    echo "Android set: $(ls "$KELFONT_ANDROID_FONTS" | grep -cE '\.(ttf|otf|ttc)$') files, $(du -sm "$KELFONT_ANDROID_FONTS" | cut -f1) MB (scripts/android-fonts.sh)"
  fi
  echo "Load average at the end: $(cut -d' ' -f1-3 /proc/loadavg) (the machine may be shared)"
} > "$results/machine.txt"

mkdir -p docs
python3 scripts/bench_report.py "$results/memory.json" "$results/disk.json" "$results/machine.txt" \
  "$syncs" > docs/PERFORMANCE.md
echo "=== wrote docs/PERFORMANCE.md"
