#!/usr/bin/env bash
# The camera keys and F4, checked through window dumps taken with growth
# paused (F3), so only the view changes between them.
# Usage: test_camera_keys.sh DLA3D home|zoom|autospin|roll|restart
source "$(dirname "$0")/harness.sh"
source "$(dirname "$0")/harness_dump.sh"
source "$(dirname "$0")/harness_menu.sh"
source "$(dirname "$0")/harness_view.sh"
gui_init "$1"
case=$2
out=$GUI_WORKDIR
GUI_SCREEN=1600x1200x24

n=0
shot() {
  local f
  f=$(printf '%04d.tga' $n)
  n=$((n + 1))
  view_settle
  gui_dump "$f"
  cp "$out/$f" "$out/$1.tga"
}
same() { [ "$(gui_tga same "$1.tga" "$2.tga")" = same ]; }
# Many presses of one key, faster than gui_key; the frames need not keep up.
press() { xdotool key --window "$GUI_WID" --delay 5 $(yes "$1" | head -n "$2"); }
# Width of the bounding box of the green circles (0.5, 1, 0.5).
circle_width() { view_extent "$1.tga" 128 255 128 | awk '{print $3 - $1}'; }

gui_start_xvfb
gui_start
gui_find_window || gui_fail "no window"
sleep 0.5
# Restart (F4 restarts growing) and pause at once: growth is fast enough to
# cover the axes in half a second, so hold the aggregate at a few cells.
gui_key F4 F3

case $case in
home)
  shot start
  gui_key Left Left Up Up plus plus bracketright period
  shot moved
  same start moved && gui_fail "arrows, zoom, roll and dolly left the picture as it was"
  gui_key h
  shot home
  same start home || gui_fail "h did not bring back the starting picture"
  gui_key Right Down minus comma bracketleft H
  shot home2
  same start home2 || gui_fail "H did not bring back the starting picture"
  # Arrows with shift held do nothing.
  gui_key shift+Left shift+Up shift+Right shift+Down
  shot shifted
  same start shifted || gui_fail "arrows with shift turned the view"
  ;;

zoom)
  shot start
  w0=$(circle_width start)
  gui_key plus
  shot in
  w1=$(circle_width in)
  [ "$w1" -gt "$w0" ] || gui_fail "+ did not enlarge the circles: $w0 then $w1"
  gui_key h minus
  shot out
  w2=$(circle_width out)
  [ "$w2" -lt "$w0" ] || gui_fail "- did not shrink the circles: $w0 then $w2"
  gui_key h equal
  shot equal
  same in equal || gui_fail "= differs from +"
  gui_key h underscore
  shot underscore
  same out underscore || gui_fail "_ differs from -"
  # The eye moves: . closer (larger), , away (smaller); > and < alike.
  gui_key h period
  shot closer
  [ "$(circle_width closer)" -gt "$w0" ] || gui_fail ". did not bring the eye closer"
  gui_key h greater
  shot closer2
  same closer closer2 || gui_fail "> differs from ."
  gui_key h comma
  shot away
  [ "$(circle_width away)" -lt "$w0" ] || gui_fail ", did not move the eye away"
  # Zoom limits: from 60 degrees the aperture stops just below 1 after
  # 80 presses of + (60 * 0.95^80 < 1) and at or above 90 after 88 presses
  # of - from there; further presses change nothing.
  gui_key h
  press plus 90
  shot in_limit
  press plus 10
  shot in_limit2
  same in_limit in_limit2 || gui_fail "+ went on beyond the zoom limit"
  same in_limit start && gui_fail "zooming in changed nothing"
  press minus 100
  shot out_limit
  press minus 10
  shot out_limit2
  same out_limit out_limit2 || gui_fail "- went on beyond the zoom limit"
  echo "circle widths: start $w0, + $w1, - $w2, at the outer limit $(circle_width out_limit)"
  [ "$(circle_width out_limit)" -lt "$(circle_width out)" ] || gui_fail "zoomed fully out shows no less than one step out"
  ;;

autospin)
  # Only the extras: the red x axis points at the eye, so it shows on the
  # side the view turned to.
  view_dla_mode $VIEW_DLA_OFF || gui_fail "menu"
  gui_key F2
  shot start
  gui_key a
  shot spin1
  sleep 0.3
  shot spin2
  same spin1 spin2 && gui_fail "a: the view did not spin while paused"
  read -r xa _ na < <(view_centroid spin2.tga 255 0 0)
  gui_key A
  shot stop1
  sleep 0.3
  shot stop2
  same stop1 stop2 || gui_fail "A after a did not stop the spin"
  gui_key h
  shot home
  same start home || gui_fail "h after spinning differs from the start"
  # From zero A spins the other way.
  gui_key A
  shot back1
  sleep 0.3
  shot back2
  same back1 back2 && gui_fail "A from zero did not spin"
  read -r xb _ nb < <(view_centroid back2.tga 255 0 0)
  [ "$na" -gt 0 ] && [ "$nb" -gt 0 ] || gui_fail "x axis not seen: $na, $nb pixels"
  echo "x axis seen at x = $xa with a, $xb with A (centre 400)"
  awk -v a="$xa" -v b="$xb" 'BEGIN {exit !((a - 400) * (b - 400) < 0)}' ||
    gui_fail "a and A spin the same way: x axis at $xa and $xb"
  ;;

roll)
  gui_key F2
  shot start
  read -r _ y0 ng < <(view_centroid start.tga 0 255 0)
  [ "$ng" -gt 0 ] || gui_fail "y axis not seen"
  press bracketright 10
  shot right
  press bracketleft 10
  press bracketleft 10
  shot left
  read -r _ yr _ < <(view_centroid right.tga 0 255 0)
  read -r _ yl _ < <(view_centroid left.tga 0 255 0)
  echo "y axis centroid at y = $y0, after ] $yr, after [ $yl"
  # The y axis runs from the centre to the right: a roll lifts or lowers it,
  # [ and ] in opposite directions.
  awk -v a="$yr" -v b="$yl" -v c="$y0" 'BEGIN {exit !((a - c) * (b - c) < 0 && (a - c) ^ 2 > 25 && (b - c) ^ 2 > 25)}' ||
    gui_fail "[ and ] did not roll opposite ways: y axis at $y0, $yr, $yl"
  gui_key h
  shot home
  same start home || gui_fail "h after rolling differs from the start"
  ;;

restart)
  # Info and extras off: what is lit is the aggregate.
  gui_key F3 F1 F2
  sleep 3
  gui_key F3
  shot grown
  report_write "$out/r1.txt" || gui_fail "report"
  n1=$(report_value "$out/r1.txt" "Number of particles")
  l1=$(gui_tga lit grown.tga 0 0 800 600)
  # Restart, and hold the new aggregate before it has grown much.
  gui_key F4 F3
  shot restarted
  report_write "$out/r2.txt" || gui_fail "report"
  n2=$(report_value "$out/r2.txt" "Number of particles")
  l2=$(gui_tga lit restarted.tga 0 0 800 600)
  echo "particles $n1 then $n2, lit pixels $l1 then $l2"
  [ "$n1" -ge 100 ] || gui_fail "too few particles before F4: $n1"
  [ "$n2" -lt $((n1 / 2)) ] || gui_fail "F4 did not restart: $n1 then $n2 particles"
  [ "$l2" -lt $((l1 / 2)) ] || gui_fail "F4: the picture kept the aggregate ($l1 then $l2 lit pixels)"
  ;;
*)
  gui_fail "unknown case $case"
  ;;
esac

gui_running || gui_fail "program ended"
gui_key_quit q
gui_wait_exit
[ "$GUI_STATUS" = 0 ] || gui_fail "exit status $GUI_STATUS"
gui_pass
