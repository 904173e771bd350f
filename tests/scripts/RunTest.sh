#!/usr/bin/env bash
# `run` where there is no screen: a signal to it ends the program in order, so that it saves, and nothing
# that it started stays.
set -euo pipefail
cd "$(dirname "$0")/../.."

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
files="$home/Brevick Tuning Orlo"
mkdir "$files"
echo '{"updateCheckInterval": 4}' >"$files/options.json" # never
# JACK remembers eight servers, killed ones too, until the next of their name. So this one has the name of
# the other tests' servers: in a list that is full its place is free.
env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM XDG_DATA_HOME="$home" JACK_DEFAULT_SERVER=orlo-test-1 \
  ./run >"$home/output" 2>&1 &
run=$!

# The processes that have this home; a sound server is in no session or group of the others.
left() { grep -lsz "^XDG_DATA_HOME=$home\$" /proc/[0-9]*/environ | cut -d/ -f3 || true; }
fail() { cat "$home/output"; printf '%s\n' "$*"; left | xargs -r kill -KILL; exit 1; }

for _ in $(seq 600); do
  if [ -s "$files/orlo_v2.json" ] || ! kill -0 "$run" 2>/dev/null; then break; fi
  sleep 0.1
done
[ -s "$files/orlo_v2.json" ] || fail "the program does not start"
kill -TERM "$run"
wait "$run" || fail "run ends with $?"
grep -q masterVolume "$files/options.json" || fail "the options are not saved"
grep -q "a virtual one" "$home/output" || fail "no screen was started"
grep -q "is up" "$home/output" || fail "nothing says that it is up"
if grep -q "^ALSA lib" "$home/output"; then fail "ALSA's lines reach the eye"; fi
grep -q "Resource dir" build/run.log || fail "the log of the run is not kept"
grep -q "Resource dir" "$home/output" || fail "what the program says does not reach the eye"
for pid in $(left); do fail "left behind: $(tr '\0' ' ' <"/proc/$pid/cmdline")"; done
