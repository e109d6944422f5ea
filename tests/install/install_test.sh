#!/usr/bin/env bash
# Installs a built tree into a temporary prefix and builds a host program
# against it both ways, with the CMake package and with pkg-config, then
# runs what was built.
#   install_test.sh BUILD_DIR C++_COMPILER "EXTRA_FLAGS"
set -euo pipefail
build=$1
cxx=$2
flags=${3:-}
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d "${TMPDIR:-/tmp}/kelfont-install-XXXXXX")
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

cmake --install "$build" --prefix "$prefix" >/dev/null
test -f "$prefix/include/kelfont/api/kelfont.h"
"$prefix/bin/kelfont" --version

echo "--- CMake package"
cmake -S "$here/host" -B "$work/host" -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_CXX_FLAGS="$flags" >/dev/null
cmake --build "$work/host" >/dev/null
"$work/host/host_shared"
"$work/host/host_static"

echo "--- pkg-config"
pcdir=$(dirname "$(find "$prefix" -name kelfont.pc | head -n 1)")
pc() { PKG_CONFIG_PATH="$pcdir" pkg-config "$@" kelfont; }
libdir=$(pc --variable=libdir)
# shellcheck disable=SC2046,SC2086
"$cxx" -std=c++17 $flags "$here/../api/host/HostProgram.cpp" $(pc --cflags) $(pc --libs) \
  -Wl,-rpath,"$libdir" -o "$work/host_pkgconfig"
"$work/host_pkgconfig"
