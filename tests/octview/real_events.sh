#!/usr/bin/env bash
# Mouse and keys of the window system, not of a script, on the whole program: real_events.sh OCTVIEW OCTSIMULATE FOLDER
# Under a virtual screen; the picture of the view has to be saved, the program has to end by its own key.
set -euo pipefail
octview=$1 octsimulate=$2 folder=$3
rm -rf "$folder"
mkdir -p "$folder"
cd "$folder"
"$octsimulate" -o finger.npy --ascans 48 --bscans 48 --width 3 --length 3 --spectrum 256 >/dev/null
"$octview" finger.npy --size 1024x700 --scale 1 &
program=$!
trap 'kill $program 2>/dev/null || true' EXIT

window=
for _ in $(seq 200); do
  window=$(xdotool search --name ' - octview$' 2>/dev/null | head -n 1) || true
  [ -z "$window" ] || break
  sleep 0.1
done
[ -n "$window" ] || { echo "no window came" >&2; exit 1; }
xdotool windowfocus "$window" || true
event() { xdotool "$@"; sleep 0.4; }
event mousemove --window "$window" 840 520
event mousedown 1
event mousemove --window "$window" 900 540
event mouseup 1
event key 2
event key ctrl+s
event key Return
for _ in $(seq 200); do
  [ ! -s picture.png ] || break
  sleep 0.1
done
[ -s picture.png ] || { echo "no picture was saved" >&2; exit 1; }
grep -q -- "--mode maximum" picture.png || { echo "the picture is not of the mode that the key chose" >&2; exit 1; }
! grep -q -- "--angles 25 -35" picture.png || { echo "the mouse turned nothing" >&2; exit 1; }
event key ctrl+q
for _ in $(seq 100); do
  kill -0 $program 2>/dev/null || break
  sleep 0.1
done
trap - EXIT
wait $program
