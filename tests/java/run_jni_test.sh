#!/usr/bin/env bash
# Runs KelFontJniTest in a JVM against the built libkelfont.so and checks
# the lines the library logged to standard error, in order.
set -u
java=$1 classpath=$2 libdir=$3
err=$(mktemp)
work=$(mktemp -d "${TMPDIR:-/tmp}/kelfont-jni-XXXXXX")
trap 'rm -rf "$err" "$work"' EXIT
"$java" -Djava.library.path="$libdir" -cp "$classpath" KelFontJniTest "$work" 2>"$err"
status=$?
expected=(
  "E/QRO-NATIVE-PROFILE: InitFontManager"
  "E/QRO-NATIVE-PROFILE: qrfontZipPath is NULL ! "
  "E/QRO-NATIVE-PROFILE: InitFontManager"
  "E/QRO-NATIVE-PROFILE: extractPath is NULL ! "
  "E/QRO-NATIVE-PROFILE: InitFontManager"
  "E/QRO-NATIVE-PROFILE: UnInitFontManager"
)
actual=$(grep -E '^E/QRO-NATIVE-PROFILE: (InitFontManager|UnInitFontManager|qrfontZipPath|extractPath)' "$err")
want=$(printf '%s\n' "${expected[@]}")
if [ "$actual" != "$want" ]; then
  echo "log lines differ"; echo "--- expected"; echo "$want"; echo "--- actual"; echo "$actual"
  cat "$err"
  exit 1
fi
exit $status
