#!/usr/bin/env bash
# Start-up: -h's usage with no display and after other options, the forms'
# texts, the window size of each command line, a resize reaching the
# projection and the dumps, the first frame's statistics, idle work stopped
# while the window is hidden, the quitting keys, stereo visuals.
source "$(dirname "$0")/harness.sh"
gui_init "$1" "$2"
usage() {
  [ "$STATUS" = 255 ] && [ "$(head -1 "$GUI_TMP/stderr")" = "Usage: $GUI_PROG [command line options]" ] &&
    [ "$(tail -1 "$GUI_TMP/stderr")" = "Version: 1.02" ] && [ ! -s "$GUI_TMP/stdout" ] ||
    gui_fail "$1: status $STATUS; $(cat "$GUI_TMP/stderr")"
}
# With no display at all: a program that touched the window system would fail otherwise.
(unset DISPLAY; gui_run -h; usage "-h with no display") || exit 1
gui_start_xvfb
gui_run -d -f -ss -x -h -s; usage "-h after other options"
shown 0 || gui_fail "-h left a window"

gui_start
# What the forms show at start-up (form:x,y=text): the settings, surface and slicing defaults.
grep '^[0-9]:' "$LOG" | diff "$(dirname "$0")/startup.txt" - >&2 || gui_fail "the forms' texts differ"
shown 1 || gui_fail "a form is shown at start-up"
xwininfo -root -children | grep -q '"XForm")' || gui_fail "the toolkit was not initialised"
# A hidden window runs no idle work (growth, statistics, spin): the idle
# callback is removed when it is unmapped and set again when it is mapped.
idle() { [ "$(grep '^idle ' "$LOG" | tail -1)" = "idle $1" ]; }
xdotool windowunmap --sync "$WID"
wait_for 10 idle off || gui_fail "idle work not stopped while the window is hidden"
xdotool windowmap --sync "$WID"
wait_for 10 idle on || gui_fail "idle work not resumed when the window is shown again"
# The circles seen face on are as wide as high, before and after a resize.
key F4 F3 F2
for size in 800x600 700x500; do
  xdotool windowsize "$WID" ${size/x/ }
  wait_for 30 eval '[ "$(size_of "$WID")" = $size ]' || gui_fail "no resize to $size"
  dump "$size"; [ "$(probe size "$size.tga")" = "$size" ] || gui_fail "the dump of a $size window is $(probe size "$size.tga")"
  read -r x0 y0 x1 y1 < <(probe extent "$size.tga" 128 255 128)
  [ $((x1 - x0 - y1 + y0)) -le 2 ] && [ $((y1 - y0 - x1 + x0)) -le 2 ] && [ $((x1 - x0)) -gt 100 ] ||
    gui_fail "$size: the circles span $((x1 - x0)) x $((y1 - y0)) pixels"
done
# The statistics block is drawn once, in the first frame, with the grey 0 / 0.
grep -x 'not-a-number colour in frame [0-9]*' "$LOG" | diff - <(echo "not-a-number colour in frame 0") >&2 ||
  gui_fail "not one not-a-number grey, in the first frame"
gui_quit q

# "-s" last asks for a stereo visual, keeping the width "-ss" doubled. Mesa
# under Xvfb has none: freeglut then ends the program with status 1.
while read -r size quit cursor args; do
  if ! gui_start $args; then
    gui_wait_exit
    [[ $args == *-s ]] && [ "$STATUS" = 1 ] && grep -q 'FBConfig with necessary capabilities not found' "$GUI_TMP/stderr" ||
      gui_fail "$args: no window, status $STATUS, and not for want of a stereo visual"
    continue
  fi
  wait_for 30 eval '[ "$(size_of "$WID")" = $size ]' || gui_fail "$args: window $(size_of "$WID"), expected $size"
  [ "$(grep -c '^cursor 101$' "$LOG")" = "$cursor" ] || gui_fail "$args: the cursor hidden $(grep -c '^cursor' "$LOG") times"
  gui_quit "$quit"
done <<'RUNS'
1600x600 Q 1 -ss
3200x600 Escape 1 -ss -ss
1600x600 q 1 -s -ss
800x600 q 0 -f -f
800x600 q 0 -f
800x600 q 0 -x --help h -S -ff -d
800x600 q 0 -s
1600x600 q 0 -ss -s
RUNS
gui_pass
