#!/usr/bin/env bash
# Harness for driving dla3d under a private Xvfb. Source it from a test
# script; every function reports failure through its return status, and
# gui_fail ends the test.
#
#   source "$(dirname "$0")/harness.sh"
#   gui_init "$1"                 # path of dla3d; makes a temp dir, sets the trap
#   gui_start_xvfb                # private server, exports DISPLAY
#   gui_start -ss                 # dla3d with arguments, in $GUI_WORKDIR
#   gui_find_window || gui_fail "no window"   # sets GUI_WID
#   [ "$(gui_window_size)" = 1600x600 ] || gui_fail "size"
#   gui_key a a h                 # keys that do not end the program
#   gui_key_quit q                # a key that ends it
#   gui_wait_exit; [ "$GUI_STATUS" = 0 ] || gui_fail "status $GUI_STATUS"
#   gui_pass
#
# Variables:
#   GUI_PROG     the program under test
#   GUI_TMP      temp dir, removed at exit (kept when GUI_KEEP=1 is set)
#   GUI_WORKDIR  the program's working directory (inside GUI_TMP): files it
#                writes (window dumps, exports) land here
#   GUI_STDERR   file holding the program's standard error ($GUI_STDOUT likewise)
#   GUI_PID      process id of the program; GUI_XVFB_PID of the server
#   GUI_WID      the drawing window, once found
#   GUI_STATUS   exit status, after gui_wait_exit or gui_run
#   GUI_SCREEN   screen geometry for Xvfb (default 3300x1300x24: "-ss -ss"
#                asks for a window 3200 pixels wide)
#
# Focus: there is no window manager, so focus does not follow the pointer.
# gui_key sends events straight to the window (xdotool key --window). A key
# that ends the program must be typed into the focused window instead
# (gui_key_quit): with --window xdotool reports BadWindow on the key-up
# after the window has gone.

GUI_TITLE='^Diffusion Limited Aggregation$'
GUI_SCREEN=${GUI_SCREEN:-3300x1300x24}
GUI_PID=""
GUI_XVFB_PID=""
GUI_WID=""
GUI_STATUS=""

# Ends the test as failed, with a message and the program's standard error.
gui_fail() {
  echo "FAIL: $*" >&2
  if [ -s "${GUI_STDERR:-}" ]; then
    echo "--- dla3d stderr ---" >&2
    cat "$GUI_STDERR" >&2
  fi
  exit 1
}

gui_pass() {
  echo "PASS"
  exit 0
}

# Kills what this test started (by process id) and removes the temp dir.
gui_cleanup() {
  if [ -n "$GUI_PID" ] && kill -0 "$GUI_PID" 2>/dev/null; then
    kill "$GUI_PID" 2>/dev/null
    wait "$GUI_PID" 2>/dev/null
  fi
  if [ -n "$GUI_XVFB_PID" ] && kill -0 "$GUI_XVFB_PID" 2>/dev/null; then
    kill "$GUI_XVFB_PID" 2>/dev/null
    wait "$GUI_XVFB_PID" 2>/dev/null
  fi
  if [ -n "${GUI_TMP:-}" ] && [ -z "${GUI_KEEP:-}" ]; then
    rm -rf "$GUI_TMP"
  fi
}

# gui_init PROGRAM: checks the tools and the program, makes the temp dirs
# and installs the cleanup trap.
gui_init() {
  GUI_PROG=$1
  # The program runs in its own directory: keep the path usable from there.
  case $GUI_PROG in /*) ;; *) GUI_PROG=$PWD/$GUI_PROG ;; esac
  [ -x "$GUI_PROG" ] || gui_fail "program not found: $GUI_PROG"
  local tool
  for tool in Xvfb xdotool xdpyinfo xwininfo; do
    command -v "$tool" >/dev/null || gui_fail "missing tool: $tool"
  done
  GUI_TMP=$(mktemp -d "${TMPDIR:-/tmp}/dla3d-gui.XXXXXX") || gui_fail "mktemp"
  GUI_WORKDIR=$GUI_TMP/work
  mkdir -p "$GUI_WORKDIR"
  GUI_STDERR=$GUI_TMP/stderr
  GUI_STDOUT=$GUI_TMP/stdout
  trap gui_cleanup EXIT
  trap 'exit 130' INT TERM
}

# Starts a private Xvfb and waits until it answers. The server picks its own
# free display number (-displayfd) and writes it only once its sockets are
# listening, so a server of another test that is still starting or shutting
# down on some number can never be mistaken for ours.
gui_start_xvfb() {
  local i tries n
  for tries in 1 2 3; do
    : >"$GUI_TMP/display"
    Xvfb -displayfd 3 -screen 0 "$GUI_SCREEN" -nolisten tcp \
      3>"$GUI_TMP/display" >"$GUI_TMP/xvfb.log" 2>&1 &
    GUI_XVFB_PID=$!
    for i in $(seq 1 150); do
      kill -0 "$GUI_XVFB_PID" 2>/dev/null || break
      n=$(tr -dc '0-9' <"$GUI_TMP/display")
      if [ -n "$n" ] && xdpyinfo -display ":$n" >/dev/null 2>&1 && kill -0 "$GUI_XVFB_PID" 2>/dev/null; then
        export DISPLAY=":$n"
        return 0
      fi
      sleep 0.1
    done
    kill "$GUI_XVFB_PID" 2>/dev/null
    wait "$GUI_XVFB_PID" 2>/dev/null
    GUI_XVFB_PID=""
  done
  gui_fail "could not start Xvfb: $(cat "$GUI_TMP/xvfb.log" 2>/dev/null)"
}

# A server that answered may still be gone by the time the program
# connects (seen rarely with many servers starting and stopping in
# parallel). The program then says so and ends at once: start a new server
# and try again, up to three times.
GUI_RETRIES=0
gui_lost_display() {
  grep -q "Can't open display" "$GUI_STDERR" 2>/dev/null && [ "$GUI_RETRIES" -lt 3 ] || return 1
  GUI_RETRIES=$((GUI_RETRIES + 1))
  echo "display $DISPLAY lost; new server (retry $GUI_RETRIES)" >&2
  if [ -n "$GUI_XVFB_PID" ]; then
    kill "$GUI_XVFB_PID" 2>/dev/null
    wait "$GUI_XVFB_PID" 2>/dev/null
  fi
  gui_start_xvfb
}

# gui_start ARGS...: starts the program in the background in $GUI_WORKDIR.
gui_start() {
  GUI_ARGS=("$@")
  (cd "$GUI_WORKDIR" && exec "$GUI_PROG" "$@") >"$GUI_STDOUT" 2>"$GUI_STDERR" &
  GUI_PID=$!
}

# gui_run ARGS...: runs the program to its end (for runs that open no
# window, like "-h"), with a 20 s limit; sets GUI_STATUS.
gui_run() {
  (cd "$GUI_WORKDIR" && exec timeout 20 "$GUI_PROG" "$@") >"$GUI_STDOUT" 2>"$GUI_STDERR"
  GUI_STATUS=$?
  if gui_lost_display; then gui_run "$@"; fi
}

# 1 while the program runs (a finished child not yet waited for is a zombie).
gui_running() {
  [ -n "$GUI_PID" ] || return 1
  local state
  state=$(awk '{print $3}' "/proc/$GUI_PID/stat" 2>/dev/null) || return 1
  [ -n "$state" ] && [ "$state" != Z ]
}

# gui_find_window [SECONDS]: waits (default 15 s) for the visible drawing
# window; sets GUI_WID. Fails early when the program has ended.
gui_find_window() {
  local limit=${1:-15} i
  GUI_WID=""
  for i in $(seq 1 $((limit * 10))); do
    GUI_WID=$(xdotool search --onlyvisible --name "$GUI_TITLE" 2>/dev/null | head -n 1)
    [ -n "$GUI_WID" ] && return 0
    if ! gui_running; then
      gui_lost_display || return 1
      gui_start "${GUI_ARGS[@]}"
    fi
    sleep 0.1
  done
  return 1
}

# gui_window_size [WID]: prints WIDTHxHEIGHT of the window.
gui_window_size() {
  local wid=${1:-$GUI_WID}
  xwininfo -id "$wid" | awk '/^ *Width:/ {w = $2} /^ *Height:/ {h = $2} END {print w "x" h}'
}

# gui_visible_windows: prints the ids of the mapped top-level windows.
gui_visible_windows() {
  local id
  for id in $(xwininfo -root -children | awk '/^ +0x/ {print $1}'); do
    if xwininfo -id "$id" | grep -q 'Map State: IsViewable'; then echo "$id"; fi
  done
}

# gui_window_position [WID]: prints the window's screen position as "X Y".
gui_window_position() {
  local wid=${1:-$GUI_WID}
  xwininfo -id "$wid" | awk '/Absolute upper-left X:/ {x = $4} /Absolute upper-left Y:/ {y = $4} END {print x, y}'
}

# gui_centred_origin W H: prints "X Y", where the toolkit puts a W x H form
# shown with FL_PLACE_CENTER (no window manager, so no decorations). Add a
# layout coordinate to get the screen position of an object of the form.
gui_centred_origin() {
  local sw sh
  read -r sw sh < <(xdpyinfo | awk '/dimensions:/ {split($2, d, "x"); print d[1], d[2]}')
  echo $(((sw - $1) / 2)) $(((sh - $2) / 2))
}

# gui_click X Y [BUTTON]: moves the pointer to screen position X Y and clicks
# (button 1 left, 2 middle, 3 right).
gui_click() {
  xdotool mousemove --sync "$1" "$2" click "${3:-1}"
}

# gui_drag X1 Y1 X2 Y2 [BUTTON]: presses at X1 Y1, moves to X2 Y2 in ten
# steps and releases (screen positions).
gui_drag() {
  local b=${5:-1} i
  xdotool mousemove --sync "$1" "$2" mousedown "$b"
  for i in $(seq 1 10); do
    xdotool mousemove --sync $(($1 + ($3 - $1) * i / 10)) $(($2 + ($4 - $2) * i / 10))
  done
  xdotool mouseup "$b"
}

# gui_key KEY...: sends keys (xdotool names: a, plus, bracketleft, F1, Left,
# shift+Left) to the drawing window, one after another.
gui_key() {
  xdotool key --window "$GUI_WID" --delay 50 "$@"
}

# gui_key_quit KEY: focuses the drawing window and types a key that ends
# the program.
gui_key_quit() {
  xdotool windowfocus --sync "$GUI_WID" || return 1
  xdotool key "$1"
}

# gui_wait_exit [SECONDS]: waits (default 10 s) for the program to end;
# sets GUI_STATUS to its exit status, or fails the test on timeout.
gui_wait_exit() {
  local limit=${1:-10} i
  for i in $(seq 1 $((limit * 10))); do
    if ! gui_running; then
      wait "$GUI_PID"
      GUI_STATUS=$?
      GUI_PID=""
      return 0
    fi
    sleep 0.1
  done
  gui_fail "program still running after $limit s"
}
