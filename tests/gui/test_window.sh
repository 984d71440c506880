#!/usr/bin/env bash
# The drawing window's title and size for a command line; the dialog forms
# start hidden; q ends the program with status 0.
# Usage: test_window.sh DLA3D WIDTHxHEIGHT [ARGS...]
source "$(dirname "$0")/harness.sh"
gui_init "$1"
size=$2
shift 2

gui_start_xvfb
gui_start "$@"
gui_find_window || gui_fail "no window titled 'Diffusion Limited Aggregation'"
# The size is set right after the window is created; give it a moment.
got=""
for i in $(seq 1 30); do
  got=$(gui_window_size)
  [ "$got" = "$size" ] && break
  sleep 0.1
done
[ "$got" = "$size" ] || gui_fail "window is $got, expected $size"

# Only the drawing window is mapped: the four forms exist but are hidden.
visible=$(gui_visible_windows)
[ "$(echo "$visible" | wc -l)" = 1 ] && [ "$((visible))" = "$GUI_WID" ] || gui_fail "visible windows: $visible (drawing window $GUI_WID)"
# The toolkit is connected: XForms keeps its own unmapped helper window.
xwininfo -root -children | grep -q '"XForm")' || gui_fail "the form toolkit was not initialised"

gui_running || gui_fail "program ended"
gui_key_quit q
gui_wait_exit
[ "$GUI_STATUS" = 0 ] || gui_fail "exit status $GUI_STATUS after q"
gui_pass
