#!/usr/bin/env bash
# What the frames show: text and extras (F2, F1), the axes, growth and its
# pause, the aggregate's and the surface's drawing modes, a surface read
# while its drawing is off, both eyes side by side ("-ss"). Colours by root:
# test_png.sh (the window against the batch picture) and the unit tests.
source "$(dirname "$0")/harness.sh"
gui_init "$1" "$2"
GUI_SCREEN=1700x1000x24
gui_start_xvfb
gui_start
key F4; sleep 0.3; key F3  # a small aggregate, held still
lit() { probe lit "$1.tga" "${@:2}"; }
count() { probe count "$1.tga" "${@:2}"; }
other() { probe other "$1.tga" "${@:2}"; }
same() { [ "$(probe same "$1.tga" "$2.tga")" = same ]; }

dump start  # text, extras and the aggregate in lines
[ "$(count start 255 255 255 0 0 250 200)" -ge 500 ] || gui_fail "no information text"
[ "$(count start 128 255 128)" -ge 300 ] && [ "$(count start 255 128 128)" -ge 1 ] || gui_fail "no circles or release points"
key F1 F2
dump lines
L=$(lit lines)
[ "$L" -ge 100 ] && [ "$(count lines 255 255 255)" = 0 ] && [ "$(count lines 128 255 128)" = 0 ] || gui_fail "F1 F2: text or circles left"
for mode in Points "Tubes (Slow)"; do menu "DLA drawing mode" "$mode"; dump "${mode%% *}"; done
[ "$(lit Points)" -lt "$L" ] && [ "$(lit Tubes)" -gt 0 ] && ! same Tubes lines || gui_fail "points $(lit Points), tubes $(lit Tubes), lines $L"
menu "DLA drawing mode" "Off"; dump off
[ "$(lit off)" = 0 ] || gui_fail "Off: $(lit off) lit pixels"
# The extras alone, from further away: the y axis (green) to the right, z (blue) up.
key F1 $(yes comma | head -10); dump extras; key F1 h
[ "$(count extras 0 255 0 400 0 800 600)" -ge 5 ] && [ "$(count extras 0 255 0 0 0 400 600)" = 0 ] &&
  [ "$(count extras 0 0 255 0 0 800 300)" -ge 5 ] && [ "$(count extras 0 0 255 0 300 800 600)" = 0 ] || gui_fail "axes"
key F3; menu "DLA drawing mode" "Lines"
wait_for 30 eval 'dump grown; [ "$(lit grown)" -gt "$L" ]' || gui_fail "no growth after F3"
key F3; dump held1; sleep 0.5; dump held2
same held1 held2 || gui_fail "the aggregate changed while paused"

menu "DLA drawing mode" "Off"; menu "Sample constraint surfaces" "Cylinder"; dump wire
Wire=$(count wire 128 128 128)
[ "$Wire" -ge 500 ] && [ "$(other wire 128,128,128)" = 0 ] || gui_fail "wireframe: $Wire grey pixels"
for mode in "Mid points of faces" "Face vertices"; do
  menu "Constraint surface drawing mode" "$mode"; dump "${mode// /}"
  [ "$(count "${mode// /}" 255 255 255)" -ge 40 ] && [ "$(other "${mode// /}" 255,255,255)" = 0 ] || gui_fail "$mode"
done
same Midpointsoffaces Facevertices && gui_fail "vertices drawn as mid points"
menu "Constraint surface drawing mode" "Faces, solid"; dump solid
read -r grey levels < <(probe greys solid.tga)
[ "$grey" = "$(lit solid)" ] && [ "$levels" -ge 5 ] && [ "$grey" -gt $((Wire * 3)) ] || gui_fail "solid: $grey grey pixels in $levels levels"
menu "Constraint surface drawing mode" "Off"; dump nosurface
[ "$(lit nosurface)" = 0 ] || gui_fail "surface Off"
# A square facing the eye read while Off is drawn as a wireframe.
printf 'solid s\nouter loop\nvertex 0 -15 -15\nvertex 0 15 -15\nvertex 0 15 15\nendloop\nouter loop\nvertex 0 -15 -15\nvertex 0 15 15\nvertex 0 -15 15\nendloop\n' >"$W/square.stl"
echo "$W/square.stl" >"$GUI_TMP/answer"; menu "Read constraint surface from STL file"; dump square
[ "$(count square 128 128 128)" -ge 300 ] && [ "$(other square 128,128,128)" = 0 ] || gui_fail "not a wireframe after reading"
gui_quit q

# Side by side: each eye in its half with the circles and the text; close
# up, the red x axis (pointing at the eye) leans to the other eye's side:
# left of the centre in the right half, right of it in the left half.
gui_start -ss
key F4 F3; dump dual
[ "$(probe size dual.tga)" = 1600x600 ] || gui_fail "dump size $(probe size dual.tga)"
for x in 0 800; do
  [ "$(count dual 128 255 128 $x 0 $((x + 800)) 600)" -ge 200 ] && [ "$(count dual 255 255 255 $x 0 $((x + 250)) 200)" -ge 300 ] ||
    gui_fail "no circles or text in the half at $x"
done
key F2 $(yes period | head -27); menu "DLA drawing mode" "Off"; dump close
c() { count close 255 0 0 $1 0 $2 600; }
[ "$(c 403 800)" -gt $(($(c 0 397) + 10)) ] && [ "$(c 800 1197)" -gt $(($(c 1203 1600) + 10)) ] ||
  gui_fail "eyes: red $(c 0 397) $(c 403 800) | $(c 800 1197) $(c 1203 1600)"
gui_quit q
gui_pass
