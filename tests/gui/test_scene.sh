#!/usr/bin/env bash
# What a frame shows, checked through window dumps.
# Usage: test_scene.sh DLA3D overlay|extras|growth|dual_stereo|dump_failure
source "$(dirname "$0")/harness.sh"
source "$(dirname "$0")/harness_dump.sh"
source "$(dirname "$0")/harness_menu.sh"
gui_init "$1"
case=$2
shift 2

# White text pixels in the top-left corner of a window slice starting at x0.
info_pixels() { gui_tga count "$1" "$2" 0 $(($2 + 250)) 200 255 255 255; }
# Pixels of the green circles (0.5, 1, 0.5) and the release points (1, 0.5, 0.5).
circle_pixels() { gui_tga count "$1" 0 0 4000 4000 128 255 128; }
seed_pixels() { gui_tga count "$1" 0 0 4000 4000 255 128 128; }

# Growth is fast: pause it, read the radius the aggregate reached from the
# report, and move the eye back until the extras (axes to 1.2 times the
# radius) fit in the window: d tan(30 degrees) >= 1.5 R.
pause_and_fit() {
  gui_key F3
  sleep 0.3
  report_write "$GUI_TMP/fit.txt" || gui_fail "no report"
  local r k
  r=$(report_value "$GUI_TMP/fit.txt" "Current radius")
  k=$(awk -v r="$r" 'BEGIN { d = 60; k = 0; while (d * 0.57735 < 1.5 * r) { d /= 0.95; k++ } print k }')
  local i
  for i in $(seq 1 "$k"); do gui_key comma; done
  sleep 0.5
}

gui_start_xvfb
args=()
[ "$case" = dual_stereo ] && args=(-ss)
[ "$case" = dump_failure ] && args=(-d)
gui_start "${args[@]}"
gui_find_window || gui_fail "no window"
sleep 0.5

case $case in
overlay)
  gui_dump 0000.tga
  n=$(info_pixels 0000.tga 0)
  [ "$n" -ge 500 ] || gui_fail "information text missing: $n white pixels top left"
  gui_key F2
  sleep 0.3
  gui_dump 0001.tga
  n=$(info_pixels 0001.tga 0)
  [ "$n" = 0 ] || gui_fail "F2 left $n white pixels top left"
  gui_key F2
  sleep 0.3
  gui_dump 0002.tga
  n=$(info_pixels 0002.tga 0)
  [ "$n" -ge 500 ] || gui_fail "second F2 did not bring the text back: $n"
  ;;
extras)
  pause_and_fit
  gui_dump 0000.tga
  c=$(circle_pixels 0000.tga)
  s=$(seed_pixels 0000.tga)
  read -r green blue < <(gui_tga axes 0000.tga 0 800)
  [ "$c" -ge 300 ] || gui_fail "circles missing: $c pixels"
  [ "$s" -ge 5 ] || gui_fail "release points missing: $s pixels"
  # The y axis runs right beyond the circle, the z axis up beyond it (the x
  # axis points at the eye).
  [ "$green" -ge 5 ] || gui_fail "green y axis missing beyond the circle: $green"
  [ "$blue" -ge 5 ] || gui_fail "blue z axis missing above the circle: $blue"
  gui_key F1
  sleep 0.3
  gui_dump 0001.tga
  c=$(circle_pixels 0001.tga)
  s=$(seed_pixels 0001.tga)
  [ "$c" = 0 ] && [ "$s" = 0 ] || gui_fail "F1 left circle $c and release point $s pixels"
  # The aggregate is still drawn without the extras.
  n=$(gui_tga lit 0001.tga 260 0 800 600)
  [ "$n" -ge 100 ] || gui_fail "aggregate missing with extras off: $n lit pixels"
  ;;
growth)
  # Extras and text off: every lit pixel is the aggregate.
  gui_key F1 F2
  sleep 0.3
  gui_dump 0000.tga
  sleep 1.5
  gui_dump 0001.tga
  a=$(gui_tga lit 0000.tga 0 0 800 600)
  b=$(gui_tga lit 0001.tga 0 0 800 600)
  [ "$b" -gt "$a" ] || gui_fail "the aggregate did not grow: $a then $b lit pixels"
  # F3 pauses: two frames well apart show the same aggregate.
  gui_key F3
  sleep 0.5
  gui_dump 0002.tga
  sleep 1.5
  gui_dump 0003.tga
  [ "$(gui_tga same 0002.tga 0003.tga)" = same ] || gui_fail "the aggregate changed while paused"
  # F3 again continues.
  gui_key F3
  sleep 1.5
  gui_dump 0004.tga
  c=$(gui_tga lit 0003.tga 0 0 800 600)
  d=$(gui_tga lit 0004.tga 0 0 800 600)
  [ "$d" -gt "$c" ] || gui_fail "growth did not continue after F3: $c then $d"
  ;;
dual_stereo)
  pause_and_fit
  gui_dump 0000.tga
  [ "$(gui_tga size 0000.tga)" = 1600x600 ] || gui_fail "dump size $(gui_tga size 0000.tga)"
  # Each eye fills its half: circles, axes and text in both.
  for x0 in 0 800; do
    c=$(gui_tga count 0000.tga $x0 0 $((x0 + 800)) 600 128 255 128)
    [ "$c" -ge 200 ] || gui_fail "circles missing in the half at $x0: $c"
    read -r green blue < <(gui_tga axes 0000.tga $x0 $((x0 + 800)))
    [ "$blue" -ge 5 ] || gui_fail "z axis missing in the half at $x0: $blue"
    t=$(info_pixels 0000.tga $x0)
    [ "$t" -ge 300 ] || gui_fail "text missing in the half at $x0: $t"
  done
  ;;
dump_failure)
  # The first free name is a link into a directory that does not exist: it
  # cannot be opened for reading (so it counts as free) nor for writing,
  # even by root. The dump fails with its message and the program runs on.
  ln -s "$GUI_TMP/missing/0000.tga" "$GUI_WORKDIR/0000.tga"
    gui_key w
  sleep 1
  gui_running || gui_fail "program ended after a failed dump"
  grep -c '^WindowDump - Failed to open file for window dump$' "$GUI_STDERR" | grep -qx 1 ||
    gui_fail "expected one failure message on standard error"
  # Nothing else on standard error in "-d" mode: no surface, no
  # intersection range, so no veto messages.
  [ "$(wc -l <"$GUI_STDERR")" = 1 ] || gui_fail "unexpected lines on standard error"
  # The counter did not move: with the link gone the next dump is 0000.tga.
  rm "$GUI_WORKDIR/0000.tga"
  gui_dump 0000.tga
  ;;
*)
  gui_fail "unknown case $case"
  ;;
esac

gui_key_quit q
gui_wait_exit
[ "$GUI_STATUS" = 0 ] || gui_fail "exit status $GUI_STATUS"
gui_pass
