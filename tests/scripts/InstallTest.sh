#!/usr/bin/env bash
# What `cmake --install` lays down is played by the link in bin, and from a place that nobody told it of before.
set -euo pipefail
cd "$(dirname "$0")/../.."
build=build/release

place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
fail() { printf '%s\n' "$*"; exit 1; }
cmake --install "$build" --prefix "$place/first" >"$place/log" || fail "$(cat "$place/log")"
mv "$place/first" "$place/prefix"
cd "$place/prefix"

for file in lib/brevick-tuning-orlo/{brevick-tuning-orlo,orlo-voice-trial,style.qss,style_mac.qss,OrloHeji.otf,OFL.txt,patches/Sine.pd} \
            share/man/man1/brevick-tuning-orlo.1 share/doc/brevick-tuning-orlo/{LICENSE,LICENSE-libpd.txt,CHANGELOG.md}; do
  [ -s "$file" ] || fail "$file is not installed"
done
[ "$(ls bin)" = brevick-tuning-orlo ] || fail "bin holds more than the link: $(ls bin)"
id=$(basename share/applications/*.desktop .desktop)
[ -s "share/metainfo/$id.metainfo.xml" ] || fail "the metainfo has another name than the desktop entry, $id"
for size in 16 24 32 48 64 128 256 512; do
  identify "share/icons/hicolor/${size}x$size/apps/$id.png" | grep -q " PNG ${size}x$size " || fail "the icon of $size is not as large"
done
[ -s "share/icons/hicolor/scalable/apps/$id.svg" ] || fail "there is no scalable icon"

ORLO_PROGRAM="$PWD/bin/brevick-tuning-orlo" "$OLDPWD/$build/bin/test_endtoend" \
  --gtest_filter=Playing.EachPressedBallSoundsAtItsRatioUntilPressedAgain
