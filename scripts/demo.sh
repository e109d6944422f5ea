#!/usr/bin/env bash
# The demo on a fresh Debian 12 machine: installs what is missing, builds
# the library and the kelfont tool, packs the default package qrfont.zip
# from the free fonts and the lists of data/, starts the font manager on a
# fresh storage folder and measures and renders a Korean and Latin
# sentence. Leaves build-demo/qrfont.zip and build-demo/demo.svg.
#   KELFONT_JOBS=N   parallel build jobs (default: the number of CPUs)
set -euo pipefail
cd "$(dirname "$0")/.."

if [ "$(id -u)" = 0 ] || command -v sudo >/dev/null 2>&1; then
  bash scripts/install-deps.sh
fi

build=build-demo
jobs=${KELFONT_JOBS:-$(nproc 2>/dev/null || echo 2)}
echo "=== build"
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DKELFONT_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" -j"$jobs" --target kelfont_cli >/dev/null
kelfont=$build/tools/kelfont

fonts=()
for dir in /usr/share/fonts/truetype/dejavu /usr/share/fonts/truetype/liberation \
           /usr/share/fonts/truetype/nanum /usr/share/fonts/opentype/noto; do
  if [ -d "$dir" ]; then fonts+=("$dir"); fi
done
font_options=()
for dir in "${fonts[@]}"; do font_options+=(--fonts "$dir"); done

echo "=== pack"
"$kelfont" pack --fonts "${fonts[@]}" --lists data -o "$build/qrfont.zip"

storage=$build/storage
rm -rf "$storage"
text="Hello, 세계! 안녕하세요 fonts."
echo "=== measure (fresh storage $storage)"
"$kelfont" measure --storage "$storage" --package "$build/qrfont.zip" "${font_options[@]}" \
  --font "Liberation Sans" "$text"
echo "=== measure, bold, in the Korean font"
"$kelfont" measure --storage "$storage" --package "$build/qrfont.zip" "${font_options[@]}" \
  --font 나눔고딕 --bold "$text"
echo "=== render"
"$kelfont" render --storage "$storage" --package "$build/qrfont.zip" "${font_options[@]}" \
  --font "Liberation Sans" -o "$build/demo.svg" "$text"
