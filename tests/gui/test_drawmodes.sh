#!/usr/bin/env bash
# The drawing modes of the aggregate and of the constraint surface chosen
# from the menus, and the colours by root, checked through window dumps.
# Usage: test_drawmodes.sh DLA3D dla|surface|surface_solid|read_stl|roots
source "$(dirname "$0")/harness.sh"
source "$(dirname "$0")/harness_dump.sh"
source "$(dirname "$0")/harness_menu.sh"
source "$(dirname "$0")/harness_view.sh"
gui_init "$1"
case=$2
out=$GUI_WORKDIR
GUI_SCREEN=1600x1200x24

lit() { gui_tga lit "$1" 0 0 800 600; }
count() { gui_tga count "$1" 0 0 800 600 "$2" "$3" "$4"; }
# Dumps are numbered in order; shot NAME makes the next one and names it.
n=0
shot() {
  local f
  f=$(printf '%04d.tga' $n)
  n=$((n + 1))
  view_settle
  gui_dump "$f"
  cp "$out/$f" "$out/$1.tga"
}

gui_start_xvfb
gui_start
gui_find_window || gui_fail "no window"

case $case in
dla)
  # Grow a little, then hold the aggregate still for every dump.
  sleep 0.6
  gui_key F3 F2
  shot lines_extras
  c=$(count lines_extras.tga 128 255 128)
  [ "$c" -ge 300 ] || gui_fail "circles missing: $c"
  gui_key F1
  shot lines
  L=$(lit lines.tga)
  [ "$L" -ge 100 ] || gui_fail "lines: only $L lit pixels"

  view_dla_mode $VIEW_DLA_OFF || gui_fail "menu"
  shot off
  [ "$(lit off.tga)" = 0 ] || gui_fail "Off with extras off: $(lit off.tga) lit pixels"
  gui_key F1
  shot off_extras
  c=$(count off_extras.tga 128 255 128)
  [ "$c" -ge 300 ] || gui_fail "circles missing with the aggregate Off: $c"
  s=$(count off_extras.tga 255 128 128)
  [ "$s" -ge 5 ] || gui_fail "release points missing with the aggregate Off: $s"
  # Besides the extras' own colours only the root's wire sphere (a few
  # pixels, in the weight colour) may show.
  o=$(view_count_not off_extras.tga 128,255,128 255,128,128 255,0,0 0,255,0 0,0,255 255,255,255)
  [ "$o" -le 30 ] || gui_fail "Off still draws the aggregate: $o pixels not of the extras"
  gui_key F1

  view_dla_mode $VIEW_DLA_POINTS || gui_fail "menu"
  shot points
  P=$(lit points.tga)
  [ "$P" -ge 50 ] && [ "$P" -lt "$L" ] || gui_fail "points: $P lit pixels (lines $L)"

  # Tubes end 0.01 thick by default: the leaves are thinner than a pixel
  # and may vanish. With both ends 0.2 thick (at least 3 pixels across at
  # this distance) every tube covers more than its one-pixel line.
  F="411 531"
  menu_choose $MENU_SETTINGS || gui_fail "menu"
  form_type $F 200 255 0.2 || gui_fail "thickness end"
  form_type $F 280 255 0.2 || gui_fail "thickness start"
  form_press $F 350 495     # Hide
  view_dla_mode $VIEW_DLA_TUBES || gui_fail "menu"
  shot tubes
  T=$(lit tubes.tga)
  [ "$T" -gt $((L * 2)) ] || gui_fail "tubes cover $T pixels, not well above lines ($L)"

  # Back to lines: the paused aggregate gives the same picture as before.
  view_dla_mode $VIEW_DLA_LINES || gui_fail "menu"
  shot lines_again
  [ "$(gui_tga same lines.tga lines_again.tga)" = same ] || gui_fail "lines picture changed while paused"
  ;;

surface)
  # Only the surface is drawn: no aggregate, extras or text.
  gui_key F3 F1 F2
  view_dla_mode $VIEW_DLA_OFF || gui_fail "menu"
  menu_choose $MENU_SAMPLE $VIEW_SAMPLE_CYLINDER || gui_fail "sample menu"
  # The start-up mode is "Faces, wireframe": grey (0.5, 0.5, 0.5) lines only.
  shot wire
  W=$(count wire.tga 128 128 128)
  [ "$W" -ge 500 ] || gui_fail "wireframe: $W grey pixels"
  [ "$(view_count_not wire.tga 128,128,128)" = 0 ] || gui_fail "wireframe has pixels not grey 128"

  view_stl_mode $VIEW_STL_MID || gui_fail "menu"
  shot mid
  M=$(count mid.tga 255 255 255)
  [ "$M" -ge 40 ] || gui_fail "mid points: $M white pixels"
  [ "$(view_count_not mid.tga 255,255,255)" = 0 ] || gui_fail "mid points mode draws other colours"
  [ "$M" -lt "$W" ] || gui_fail "mid points cover as much as the wireframe"

  view_stl_mode $VIEW_STL_VERTICES || gui_fail "menu"
  shot vertices
  V=$(count vertices.tga 255 255 255)
  [ "$V" -ge 40 ] || gui_fail "vertices: $V white pixels"
  [ "$(view_count_not vertices.tga 255,255,255)" = 0 ] || gui_fail "vertices mode draws other colours"
  [ "$(gui_tga same mid.tga vertices.tga)" = differ ] || gui_fail "vertices drawn like mid points"

  ;;

surface_solid)
  gui_key F3 F1 F2
  view_dla_mode $VIEW_DLA_OFF || gui_fail "menu"
  menu_choose $MENU_SAMPLE $VIEW_SAMPLE_CYLINDER || gui_fail "sample menu"
  shot wire
  W=$(count wire.tga 128 128 128)
  view_stl_mode $VIEW_STL_SOLID || gui_fail "menu"
  shot solid
  S=$(lit solid.tga)
  read -r G levels < <(view_greys solid.tga)
  [ "$G" = "$S" ] || gui_fail "solid: $S lit pixels, only $G grey"
  [ "$levels" -ge 5 ] || gui_fail "solid: $levels grey levels, no lighting"
  [ "$S" -gt $((W * 3)) ] || gui_fail "solid covers $S pixels, wireframe $W"

  view_stl_mode $VIEW_STL_OFF || gui_fail "menu"
  shot off
  [ "$(lit off.tga)" = 0 ] || gui_fail "surface Off: $(lit off.tga) lit pixels"

  view_stl_mode $VIEW_STL_WIRE || gui_fail "menu"
  shot wire_again
  [ "$(gui_tga same wire.tga wire_again.tga)" = same ] || gui_fail "wireframe differs the second time"
  ;;

read_stl)
  # A square of two triangles across the view, facing the eye.
  cat >"$out/square.stl" <<'STL'
solid square
 facet normal 1 0 0
  outer loop
   vertex 0 -15 -15
   vertex 0 15 -15
   vertex 0 15 15
  endloop
 endfacet
 facet normal 1 0 0
  outer loop
   vertex 0 -15 -15
   vertex 0 15 15
   vertex 0 -15 15
  endloop
 endfacet
endsolid square
STL
  gui_key F3 F1 F2
  view_dla_mode $VIEW_DLA_OFF || gui_fail "menu"
  view_stl_mode $VIEW_STL_OFF || gui_fail "menu"
  menu_choose $MENU_READ_STL || gui_fail "menu"
  fsel_type "$out/square.stl" || gui_fail "selector"
  # Reading while Off switches to the wireframe.
  shot read_off
  W=$(count read_off.tga 128 128 128)
  [ "$W" -ge 300 ] || gui_fail "no wireframe after reading with the surface Off: $W grey pixels"
  [ "$(view_count_not read_off.tga 128,128,128)" = 0 ] || gui_fail "not a wireframe after reading"
  # Reading while solid keeps it solid.
  ;;

surface_solid)
  gui_key F3 F1 F2
  view_dla_mode $VIEW_DLA_OFF || gui_fail "menu"
  menu_choose $MENU_SAMPLE $VIEW_SAMPLE_CYLINDER || gui_fail "sample menu"
  shot wire
  W=$(count wire.tga 128 128 128)
  view_stl_mode $VIEW_STL_SOLID || gui_fail "menu"
  shot solid
  S=$(lit solid.tga)
  [ "$S" -ge $((W * 20)) ] || gui_fail "solid square covers $S pixels (wireframe $W)"
  menu_choose $MENU_READ_STL || gui_fail "menu"
  fsel_type "$out/square.stl" || gui_fail "selector"
  shot read_solid
  [ "$(gui_tga same solid.tga read_solid.tga)" = same ] || gui_fail "reading while solid changed the drawing"
  ;;

roots)
  # Settings form, 411 x 531: three roots, then the associate check button;
  # both restart the growth. "Origin" places one root whatever the number,
  # so first the entry that gives three random roots ("Spherical").
  F="411 531"
  menu_choose $MENU_ROOT 1 || gui_fail "root menu"
  menu_choose $MENU_SETTINGS || gui_fail "menu"
  form_type $F 200 365 3 || gui_fail "number of roots"
  form_press $F 185 435     # "Associate seeds with roots"
  form_press $F 350 495     # Hide
  xdotool mousemove 1000 900
  report_write "$out/r.txt" || gui_fail "report"
  grep -qx 'Seed association: On' "$out/r.txt" || gui_fail "association not on"
  [ "$(report_value "$out/r.txt" "Number of roots")" = 3 ] || gui_fail "roots not 3"
  gui_key F1 F2
  sleep 0.6
  gui_key F3
  rgb="255,0,0 0,255,0 0,0,255"
  for mode in points lines; do
    [ $mode = points ] && { view_dla_mode $VIEW_DLA_POINTS || gui_fail "menu"; }
    [ $mode = lines ] && { view_dla_mode $VIEW_DLA_LINES || gui_fail "menu"; }
    shot $mode
    for c in $rgb; do
      k=$(count $mode.tga ${c//,/ })
      [ "$k" -ge 10 ] || gui_fail "$mode: only $k pixels of root colour $c"
    done
    # shellcheck disable=SC2086
    o=$(view_count_not $mode.tga $rgb)
    [ "$o" = 0 ] || gui_fail "$mode: $o pixels not coloured by root"
  done
  # Tubes colour by weight, lit: most pixels are none of the root colours.
  view_dla_mode $VIEW_DLA_TUBES || gui_fail "menu"
  shot tubes
  T=$(lit tubes.tga)
  # shellcheck disable=SC2086
  o=$(view_count_not tubes.tga $rgb)
  [ "$o" -ge $((T * 9 / 10)) ] || gui_fail "tubes: only $o of $T pixels coloured by weight"
  [ "$(view_colours tubes.tga | wc -l)" -ge 20 ] || gui_fail "tubes: too few colours"
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
