#!/usr/bin/env bash
# Mouse and keys of the window system, not of a script, on the whole program: real_events.sh OCTVIEW OCTSIMULATE FOLDER
# Under a virtual screen; the picture of the view has to be saved, the program has to end by its own key. All comes while the
# program stands still, as behind a slow frame: nothing of it may be lost, nor come in another order.
set -euo pipefail
octview=$1 octsimulate=$2 folder=$3
rm -rf "$folder"
mkdir -p "$folder"
cd "$folder"
"$octsimulate" -o finger.npy --ascans 48 --bscans 48 --width 3 --length 3 --spectrum 256 >/dev/null
"$octview" finger.npy --size 1024x700 --scale 1 &
program=$!
trap 'kill -KILL $program 2>/dev/null || true' EXIT

# Waits for a condition, for a minute at most: until_true WHAT COMMAND...
until_true() {
  local what=$1
  shift
  for _ in $(seq 600); do
    ! "$@" || return 0
    sleep 0.1
  done
  echo "$what" >&2
  exit 1
}
find_window() { window=$(xdotool search --name ' - octview$' 2>/dev/null | head -n 1) && [ -n "$window" ]; }
is_saved() { grep -qsa IEND picture.png; }
has_ended() { ! kill -0 $program 2>/dev/null; }

until_true "no window came" find_window
kill -STOP $program
xdotool windowfocus "$window" || true
xdotool mousemove --window "$window" 840 520 mousedown 1 mousemove --window "$window" 900 540 mouseup 1
xdotool key 2 key ctrl+s key Return
kill -CONT $program
until_true "no picture was saved" is_saved
grep -q -- "--mode maximum" picture.png || { echo "the picture is not of the mode that the key chose" >&2; exit 1; }
! grep -q -- "--angles 25 -35" picture.png || { echo "the mouse turned nothing" >&2; exit 1; }
xdotool key ctrl+q
until_true "the program did not end" has_ended
trap - EXIT
wait $program
