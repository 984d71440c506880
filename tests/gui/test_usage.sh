#!/usr/bin/env bash
# "-h" (anywhere on the line) writes the usage text to standard error and
# exits with -1 (255) before any window opens.
# Usage: test_usage.sh DLA3D [ARGS...]   (ARGS must contain -h)
source "$(dirname "$0")/harness.sh"
gui_init "$1"
shift

expected=$GUI_TMP/expected
{
  printf 'Usage: %s [command line options]\n' "$GUI_PROG"
  cat <<'USAGE'
Command line options
       -h    this text
       -d    more verbose mode
       -f    full screen
       -s    active (quad buffer) stereo
      -ss    dual screen stereo
Mouse controls
     left    rotate camera
   middle    roll camera
    right    menus
Function keys: see menus
Keyboard commands
        q    quit
        h    reset camera
      [,]    roll camera
      <,>    more camera forward, backward
      +,-    zoom camera in, out
      a,A    autospin speed increase/decrease
        w    window dump to TGA file
Version: 1.02
USAGE
} >"$expected"

check_run() {
  [ "$GUI_STATUS" = 255 ] || gui_fail "$1: exit status $GUI_STATUS, expected 255"
  cmp "$expected" "$GUI_STDERR" || {
    diff "$expected" "$GUI_STDERR" >&2
    gui_fail "$1: usage text differs"
  }
  [ ! -s "$GUI_STDOUT" ] || gui_fail "$1: unexpected standard output"
}

# With no X display at all: had the program tried to open a window (the
# toolkit or GLUT), it would have failed with another message and status.
(unset DISPLAY; gui_run "$@"; check_run "no display") || exit 1

# And with a display it leaves no window behind.
gui_start_xvfb
gui_run "$@"
check_run "under Xvfb"
[ -z "$(gui_visible_windows)" ] || gui_fail "a window was opened"
gui_pass
