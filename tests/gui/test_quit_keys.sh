#!/usr/bin/env bash
# A quitting key ends the program at once with status 0, also after keys
# and mouse drags that do not quit.
# Usage: test_quit_keys.sh DLA3D KEY   (an xdotool key name: q, Q, Escape)
source "$(dirname "$0")/harness.sh"
gui_init "$1"
key=$2

gui_start_xvfb
gui_start
gui_find_window || gui_fail "no window"
# Keys that only change the view or options must leave it running.
gui_key h plus minus period comma bracketleft bracketright a A Left Right Up Down shift+Left F1 F2 F3
# Drags with the left and middle buttons turn the view; they must not end it.
read -r wx wy < <(gui_window_position)
gui_drag $((wx + 400)) $((wy + 300)) $((wx + 450)) $((wy + 280)) 1
gui_drag $((wx + 400)) $((wy + 300)) $((wx + 350)) $((wy + 330)) 2
sleep 0.5
gui_running || gui_fail "program ended before the quit key"
gui_key_quit "$key"
gui_wait_exit
[ "$GUI_STATUS" = 0 ] || gui_fail "exit status $GUI_STATUS after $key"
gui_pass
