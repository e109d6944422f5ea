#!/usr/bin/env bash
# Installs what is missing, builds everything (library, kelfont tool,
# tests) with warnings as errors and runs every test (the library's, the
# tool's, and the install test that builds a host against an installed
# tree): the normal build, then the AddressSanitizer + UBSan build, then a
# ThreadSanitizer build of the concurrency tests only; last, every fuzz
# target for a short time (FUZZ_SECONDS, default 30 s each).
set -euo pipefail
cd "$(dirname "$0")/.."

if [ "$(id -u)" = 0 ] || command -v sudo >/dev/null 2>&1; then
  bash scripts/install-deps.sh
fi

# The Android font corpus: tests that need it read KELFONT_ANDROID_FONTS and
# are skipped with a message where it is not set.
if [ -z "${KELFONT_ANDROID_FONTS:-}" ] && { [ "$(id -u)" = 0 ] || command -v sudo >/dev/null 2>&1; }; then
  bash scripts/android-fonts.sh build-android-fonts
  KELFONT_ANDROID_FONTS=$PWD/build-android-fonts
fi
export KELFONT_ANDROID_FONTS=${KELFONT_ANDROID_FONTS:-}

jobs=$(nproc 2>/dev/null || echo 2)
status=0
summary=()

run_suite() {
  local name=$1; shift
  local dir=build-ci-$name
  echo "=== $name build ==="
  cmake -S . -B "$dir" -DKELFONT_WERROR=ON "$@" >/dev/null
  # shellcheck disable=SC2086  # SUITE_TARGETS is a list of targets
  cmake --build "$dir" -j"$jobs" ${SUITE_TARGETS:+--target $SUITE_TARGETS}
  echo "=== $name tests ==="
  local log=$dir/ctest.log
  if ! ctest --test-dir "$dir" -j"$jobs" --output-on-failure --timeout 600 --no-tests=error \
       ${SUITE_TESTS:+-R "$SUITE_TESTS"} 2>&1 | tee "$log"; then
    status=1
  fi
  summary+=("$name: $(grep -E 'tests passed' "$log" | tail -1 || true)")
}

run_suite release -DCMAKE_BUILD_TYPE=RelWithDebInfo
run_suite asan -DCMAKE_BUILD_TYPE=Debug -DKELFONT_SANITIZE=ON
# Without HarfBuzz (no GPOS kerning, runs measured per character): the
# library, the analyzer's tests and the grapheme clusters.
SUITE_TARGETS="kelfont kelfont_common_tests" SUITE_TESTS="KerningOnFirstUse|FontFileAnalyzer|GraphemeBreaker|WordCache" \
  run_suite noharfbuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKELFONT_HARFBUZZ=OFF
SUITE_TARGETS="kelfont_base_tests kelfont_common_tests kelfont_api_tests" SUITE_TESTS=Concurren \
  run_suite tsan -DCMAKE_BUILD_TYPE=Debug -DKELFONT_TSAN=ON
# The Android toolchain's choices: clang, libc++ (GoogleTest built from its
# sources against it; no benchmarks, whose installed library uses libstdc++),
# plain char unsigned, and no generic char_traits (as in libc++ 19).
run_suite libcxx -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
  -DCMAKE_CXX_FLAGS="-stdlib=libc++ -funsigned-char -include $PWD/tests/support/NoGenericCharTraits.h" \
  -DKELFONT_GTEST_SOURCE_DIR=/usr/src/googletest -DCMAKE_DISABLE_FIND_PACKAGE_benchmark=ON \
  -DCMAKE_REQUIRE_FIND_PACKAGE_JNI=ON

echo "=== fuzz smoke runs ==="
mkdir -p build-fuzz
fuzz_log=build-fuzz/smoke.log
if ! bash scripts/fuzz.sh "${FUZZ_SECONDS:-30}" 2>&1 | tee "$fuzz_log"; then
  status=1
fi
summary+=("fuzz: $(grep -c ': clean' "$fuzz_log" || true) targets clean, $(grep -c 'FINDING' "$fuzz_log" || true) with findings")

echo "=== summary ==="
printf '%s\n' "${summary[@]}"

exit $status
