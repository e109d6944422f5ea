#!/usr/bin/env bash
# Installs the Debian packages that libkelfont needs to build, test and
# benchmark. Quick when everything is already present. Run as root.
set -euo pipefail

packages=(
  cmake g++ make pkg-config
  libgtest-dev libgmock-dev libbenchmark-dev
  libfreetype-dev zlib1g-dev libminizip-dev libzzip-dev libharfbuzz-dev
  clang-14 libclang-rt-14-dev
  clang libc++-dev libc++abi-dev googletest
  python3-fonttools unicode-data
  fonts-dejavu-core fonts-liberation fonts-nanum
  default-jdk-headless
)
if [ "${KELFONT_WITH_PEERS:-1}" = 1 ]; then
  packages+=(libfontconfig-dev fontconfig)
fi

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "install-deps: all ${#packages[@]} packages present"
  exit 0
fi

echo "install-deps: installing ${missing[*]}"
SUDO=""
if [ "$(id -u)" != 0 ]; then SUDO=sudo; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
echo "install-deps: done"
