#!/usr/bin/env bash
# Installs what is missing, builds everything (library, kelfont tool,
# tests) with warnings as errors and runs every test (the library's, the
# tool's, and the install test that builds a host against an installed
# tree): the normal build, then the AddressSanitizer + UBSan build.
set -euo pipefail
cd "$(dirname "$0")/.."

if [ "$(id -u)" = 0 ] || command -v sudo >/dev/null 2>&1; then
  bash scripts/install-deps.sh
fi

jobs=$(nproc 2>/dev/null || echo 2)
status=0

run_suite() {
  local name=$1; shift
  local dir=build-ci-$name
  echo "=== $name build ==="
  cmake -S . -B "$dir" -DKELFONT_WERROR=ON "$@" >/dev/null
  cmake --build "$dir" -j"$jobs"
  echo "=== $name tests ==="
  if ! ctest --test-dir "$dir" -j"$jobs" --output-on-failure --timeout 600; then
    status=1
  fi
}

run_suite release -DCMAKE_BUILD_TYPE=RelWithDebInfo
run_suite asan -DCMAKE_BUILD_TYPE=Debug -DKELFONT_SANITIZE=ON

exit $status
