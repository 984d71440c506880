#!/usr/bin/env bash
# Drives dla3d under a private Xvfb; source it from a test script, or run
# "harness.sh PROGRAM ARGS..." for the program on a server of its own.
# gui_init DLA3D [SHIM], gui_start_xvfb, gui_start ARGS (waits for the first
# frame), then key, drag, menu LABEL [SUBLABEL], save PATH LABEL [SUB] (the
# shim answers the file selector), field/press on a centred form, dump NAME
# (w, the dump renamed NAME.tga), probe (tga_probe.py), gui_quit [KEY].
GUI_TMP="" GUI_PID="" GUI_XVFB="" GUI_PROBER="" GUI_RETRIES=0
PROBE="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/tga_probe.py"

gui_fail() {
  echo "FAIL: $*" >&2
  [ -s "$GUI_TMP/stderr" ] && { echo "--- dla3d stderr ---"; tail -20 "$GUI_TMP/stderr"; } >&2
  exit 1
}
gui_pass() { echo PASS; exit 0; }
gui_cleanup() { exec 7>&-; for p in $GUI_PID $GUI_XVFB $GUI_PROBER; do kill "$p" 2>/dev/null && wait "$p" 2>/dev/null; done; [ -n "${GUI_KEEP:-}" ] || rm -rf "$GUI_TMP"; }

gui_init() {
  GUI_PROG=$(realpath "$1") GUI_SHIM=${2:+$(realpath "$2")}
  for tool in Xvfb xdotool xdpyinfo xwininfo /usr/bin/python3; do command -v "$tool" >/dev/null || gui_fail "missing tool: $tool"; done
  GUI_TMP=$(mktemp -d "${TMPDIR:-/tmp}/dla3d-gui.XXXXXX") || gui_fail "mktemp"
  W=$GUI_TMP/work LOG=$GUI_TMP/shim.log
  mkdir "$W"; trap gui_cleanup EXIT; trap 'exit 130' INT TERM
  # One reader of the dumps for the whole run, asked through two pipes.
  mkfifo "$GUI_TMP/ask" "$GUI_TMP/tell"
  /usr/bin/python3 "$PROBE" "$W" <"$GUI_TMP/ask" >"$GUI_TMP/tell" &
  GUI_PROBER=$!
  exec 7>"$GUI_TMP/ask" 8<"$GUI_TMP/tell"
}

wait_for() {
  local end=$((SECONDS + $1)); shift
  until "$@"; do [ $SECONDS -le $end ] || return 1; sleep 0.05; done
}

# The server writes its display number only once it listens (-displayfd),
# so a server starting or stopping elsewhere is never taken for ours.
gui_start_xvfb() {
  Xvfb -displayfd 3 -screen 0 "${GUI_SCREEN:-3300x1300x24}" -nolisten tcp 3>"$GUI_TMP/display" >/dev/null 2>&1 &
  GUI_XVFB=$!
  wait_for 15 grep -q '[0-9]' "$GUI_TMP/display" || gui_fail "could not start Xvfb"
  export DISPLAY=:$(tr -dc 0-9 <"$GUI_TMP/display")
}

# A server that answered may still be lost by the time the program connects
# (seen with many servers starting and stopping): a new one, up to three times.
gui_lost_display() {
  grep -q "Can't open display" "$GUI_TMP/stderr" 2>/dev/null && [ $GUI_RETRIES -lt 3 ] || return 1
  GUI_RETRIES=$((GUI_RETRIES + 1)); kill "$GUI_XVFB" 2>/dev/null && wait "$GUI_XVFB" 2>/dev/null; gui_start_xvfb
}

gui_running() { [ -n "$GUI_PID" ] && ! grep -qs '^State:.Z' /proc/$GUI_PID/status && [ -e /proc/$GUI_PID ]; }
window_shown() { WID=$(xdotool search --onlyvisible --name '^Diffusion Limited Aggregation$' 2>/dev/null | head -1); [ -n "$WID" ]; }

gui_start() {
  : >"$LOG"; DUMPNO=0 MENUHEIGHT=""
  (cd "$W" && LD_PRELOAD=$GUI_SHIM DLA_SHIM_LOG=$LOG DLA_SHIM_ANSWER=$GUI_TMP/answer exec "$GUI_PROG" "$@") \
    >"$GUI_TMP/stdout" 2>"$GUI_TMP/stderr" &
  GUI_PID=$!
  wait_for 30 eval 'window_shown || ! gui_running' || gui_fail "no window after 30 s"
  if ! window_shown; then
    gui_lost_display && { gui_start "$@"; return; }
    return 1
  fi
  # The first frame is drawn in the main loop: the menus are built by then.
  wait_for 30 grep -q '^not-a-number colour' "$LOG" || gui_fail "no first frame"
  read -r WX WY < <(xwininfo -id "$WID" | awk '/Absolute upper-left [XY]:/ {printf "%s ", $4}')
  menu_rows
}

# gui_run ARGS...: to its end with no window (as "-h"); sets STATUS.
gui_run() {
  (cd "$W" && exec timeout 20 "$GUI_PROG" "$@") >"$GUI_TMP/stdout" 2>"$GUI_TMP/stderr"
  STATUS=$?
  ! gui_lost_display || gui_run "$@"
}
gui_wait_exit() {
  wait_for 60 eval '! gui_running' || gui_fail "program still running after 60 s"
  wait "$GUI_PID"; STATUS=$? GUI_PID=""
}
gui_quit() {
  gui_running || gui_fail "the program ended early"
  xdotool windowfocus --sync "$WID" key "${1:-q}"
  gui_wait_exit
  [ "$STATUS" = 0 ] || gui_fail "status $STATUS after ${1:-q}"
}

# N top-level windows mapped (forms have no name to search by).
shown() { [ "$(xwininfo -root -children | awk '/^ +0x/ {print $1}' | xargs -n1 xwininfo -id | grep -c IsViewable)" = "$1" ]; }
size_of() { xwininfo -id "$1" | awk '/Width:/ {w = $2} /Height:/ {h = $2} END {print w "x" h}'; }
# No window manager: focus does not follow the pointer, so keys go to the
# window (xdotool complains), and a quitting key to the focused window (else
# BadWindow on key-up).
key() { xdotool key --window "$WID" --delay 5 "$@" 2>/dev/null; }
# Never mousemove --sync: it waits for ever when the pointer is already there.
drag() {
  local i steps=""
  for i in 1 2 3 4 5; do steps+=" sleep 0.02 mousemove $((WX + $1 + ($3 - $1) * i / 5)) $((WY + $2 + ($4 - $2) * i / 5))"; done
  [ -z "${6:-}" ] || xdotool keydown "$6"
  xdotool mousemove $((WX + $1)) $((WY + $2)) sleep 0.05 mousedown "${5:-1}" $steps sleep 0.05 mouseup "${5:-1}"
  [ -z "${6:-}" ] || xdotool keyup "$6"
}

# MENUROW[LABEL], MENUROW[LABEL/SUBLABEL] (#N for row N): the rows of the
# menus from the shim's record (the main menu is the last made).
menu_rows() {
  declare -gA MENUROW=()
  local k v
  while IFS=$'\t' read -r k v; do MENUROW[$k]=$v; done < <(awk -F'; ' '/^menu / {
      for (i = 2; i <= NF; i++) entry[$1, i - 2] = $i; n[$1] = NF - 1; main = $1 }
    END { for (i = 0; i < n[main]; i++) {
        label = entry[main, i]; sub(/[=>][0-9]*$/, "", label); print label "\t" i; print "#" i "\t" i
        if (split(entry[main, i], s, ">") == 2)
          for (j = 0; j < n["menu " s[2]]; j++) {
            e = entry["menu " s[2], j]; sub(/=[0-9]*$/, "", e); print label "/" e "\t" j; print label "/#" j "\t" j } }
      print "rows\t" n[main] }' "$LOG")
}
menus_open() { [ "$(xdotool search --onlyvisible --name '^freeglut menu$' 2>/dev/null | wc -l)" -ge "$1" ]; }

# The right button opens the main menu with its corner at the pointer;
# along the rows to the entry, release there. A pointer move reaches a menu
# only once its window is shown; in a sub-menu freeglut ignores the release,
# and a click chooses.
menu() {
  local i=${MENUROW[$1]:-} j=${MENUROW[$1/${2:-}]:-} x=$((WX + 150)) y=$((WY + 40)) k
  [ -n "$i" ] && { [ $# = 1 ] || [ -n "$j" ]; } || gui_fail "no menu entry \"$*\""
  timeout 10 xdotool mousemove $x $y sleep 0.05 mousedown 3 search --sync --onlyvisible --name '^freeglut menu$' >/dev/null ||
    gui_fail "no menu"
  if [ -z "$MENUHEIGHT" ]; then  # rows measured once per program
    read -r MENUWIDTH MENUHEIGHT < <(size_of "$(xdotool search --onlyvisible --name '^freeglut menu$' | head -1)" | tr x ' ')
    MENUHEIGHT=$(((MENUHEIGHT - 4) / MENUROW[rows]))
  fi
  local row=$MENUHEIGHT ty=$((y + 2 + MENUHEIGHT * i + MENUHEIGHT / 2))
  xdotool mousemove $((x + 20)) $((y + 2 + row / 2)) sleep 0.05 mousemove $((x + 21)) $ty
  if [ $# = 2 ]; then
    for k in 1 2 3 4 5; do wait_for 2 menus_open 2 && break || xdotool mousemove $((x + 30 + k)) $ty; done
    menus_open 2 || gui_fail "no sub-menu \"$1\""
    x=$((x + MENUWIDTH)) y=$((y + row * i))  # the sub-menu's corner
    xdotool mousemove $((x + 20)) $((y + 2 + row / 2)) sleep 0.05 mousemove $((x + 21)) $((y + 2 + row * j + row / 2)) \
      sleep 0.05 mouseup 3 sleep 0.05 click 3
  else
    xdotool sleep 0.05 mouseup 3
  fi
  wait_for 30 eval '! menus_open 1' || gui_fail "menu still open after \"$*\""
}

save() {
  local path=$1; shift
  rm -f "$path"; echo "$path" >"$GUI_TMP/answer"; menu "$@"
  wait_for 60 eval '[ ! -e "$GUI_TMP/answer" ] && [ -s "$path" ] && [ "$(stat -c %s "$path")" = "$(sleep 0.1; stat -c %s "$path")" ]' ||
    gui_fail "\"$*\" wrote no $path"
}
last_prompt() { grep '^fselector ' "$LOG" | tail -1 | sed 's/^fselector //; s/ -> .*//'; }
report() { save "$W/report.txt" "Save simulation information"; }
value() { sed -n "s/^$1: //p" "$W/report.txt"; }

form_at() { xdpyinfo | awk -v w="$1" -v h="$2" -v x="$3" -v y="$4" '/dimensions:/ {split($2, d, "x"); print int((d[1] - w) / 2) + x, int((d[2] - h) / 2) + y}'; }
field() {
  xdotool mousemove $(form_at "$1" "$2" "$3" "$4") sleep 0.05
  xdotool windowfocus --sync "$(xdotool getmouselocation --shell | sed -n 's/^WINDOW=//p')" click 1
  xdotool key --delay 20 ctrl+a ctrl+k; xdotool type --delay 20 -- "$5"; xdotool key Return sleep 0.2
}
press() { xdotool mousemove $(form_at "$1" "$2" "$3" "$4") sleep 0.05 click 1 sleep 0.3; }

probe() { local a; echo "$*" >&7; read -r a <&8; echo "$a"; [ "$a" != error ]; }
dump() {
  local n; n=$(printf '%04d.tga' $DUMPNO) DUMPNO=$((DUMPNO + 1)); key w
  wait_for 60 eval 'probe size "$n" >/dev/null 2>&1' || gui_fail "no window dump $n"
  mv "$W/$n" "$W/$1.tga"
}

if [ "$0" = "${BASH_SOURCE[0]}" ]; then
  gui_init "$1"
  gui_start_xvfb
  "$GUI_PROG" "${@:2}"
fi
