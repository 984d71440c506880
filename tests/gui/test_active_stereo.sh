#!/usr/bin/env bash
# When "-s" is the last stereo option the program asks GLUT for a stereo
# (quad buffer) visual, keeping any width "-ss" doubled. Mesa under Xvfb has
# no stereo visual; freeglut then ends the program with status 1 and says
# so, which shows the request was made. With a stereo visual the window
# must have the expected size.
# Usage: test_active_stereo.sh DLA3D WIDTHxHEIGHT [ARGS...]
source "$(dirname "$0")/harness.sh"
gui_init "$1"
size=$2
shift 2

gui_start_xvfb
gui_start "$@"
if gui_find_window; then
  sleep 0.5
  got=$(gui_window_size)
  [ "$got" = "$size" ] || gui_fail "window is $got, expected $size"
  gui_key_quit q
  gui_wait_exit
  [ "$GUI_STATUS" = 0 ] || gui_fail "exit status $GUI_STATUS after q"
  echo "stereo visual available"
else
  gui_wait_exit
  [ "$GUI_STATUS" = 1 ] || gui_fail "no window and exit status $GUI_STATUS"
  grep -q 'FBConfig with necessary capabilities not found' "$GUI_STDERR" ||
    gui_fail "no window, and not for want of a stereo visual"
  echo "no stereo visual on this server: freeglut ended the program as expected"
fi
gui_pass
