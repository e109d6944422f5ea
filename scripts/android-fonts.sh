#!/usr/bin/env bash
# Assembles an Android-like font folder from Debian's packages of the fonts a
# recent Android device ships in /system/fonts/: the Noto families (every
# script's Sans and Serif, Naskh Arabic, ...), the four Noto CJK collections,
# Noto Color Emoji, the static Roboto faces, Droid Sans Fallback (Full), and
# Inter's variable font standing in for the variable Roboto of Android 12+.
#
#   bash scripts/android-fonts.sh DIR
#
# Installs the packages that are missing (as root, or through sudo), then
# copies the files into DIR (made if needed; files already there with the
# same size are left alone). Prints the number of files and bytes.
set -euo pipefail

if [ $# -ne 1 ]; then
  echo "usage: $0 DIR" >&2
  exit 2
fi
dir=$1

packages=(fonts-noto-core fonts-noto-cjk fonts-noto-color-emoji
          fonts-roboto-unhinted fonts-droid-fallback fonts-inter-variable)
missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done
if [ ${#missing[@]} -gt 0 ]; then
  SUDO=""
  if [ "$(id -u)" != 0 ]; then
    if ! command -v sudo >/dev/null 2>&1; then
      echo "android-fonts: missing ${missing[*]} and not root" >&2
      exit 1
    fi
    SUDO=sudo
  fi
  echo "android-fonts: installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

sources=(
  /usr/share/fonts/truetype/noto/Noto*.ttf
  /usr/share/fonts/opentype/noto/Noto*CJK-*.ttc
  /usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-*.ttf
  /usr/share/fonts/truetype/droid/DroidSansFallbackFull.ttf
  /usr/share/fonts/truetype/inter-vf/Inter-roman.var.ttf
)

mkdir -p "$dir"
count=0
bytes=0
for f in "${sources[@]}"; do
  [ -f "$f" ] || { echo "android-fonts: $f is missing" >&2; exit 1; }
  target=$dir/$(basename "$f")
  size=$(stat -c %s "$f")
  if [ ! -f "$target" ] || [ "$(stat -c %s "$target")" != "$size" ]; then
    cp "$f" "$target"
  fi
  count=$((count + 1))
  bytes=$((bytes + size))
done
echo "android-fonts: $count files, $bytes bytes in $dir"
