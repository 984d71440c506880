#!/usr/bin/env bash
# What the frames show: text and extras (F2, F1), the axes, growth and its
# pause, the aggregate's and the surface's drawing modes, a surface read
# while its drawing is off, both eyes side by side ("-ss"). Colours by root:
# test_png.sh (the window against the batch picture) and the unit tests.
# The camera's keys and mouse, read from a saved POV-Ray scene's VP, VU and
# angle: each turns, rolls, zooms or moves the eye by its amount; h goes home.
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

pov() { save "$W/$1.pov" "Save DLA as" "PovRay (Cylinders + Spheres)"; }
# camera WANT: the scene's "VP VU angle" as nine numbers and one, against
# WANT (awk expressions), each within the 6 digits %g gives.
camera() {
  pov c
  local got=$(sed -n 's/^#declare VP = <\(.*\)>;$/\1/p; s/^#declare VU = <\(.*\)>;$/\1/p; s/^ angle \([^ ]*\) .*/\1/p' "$W/c.pov" | tr ',\n' '  ')
  awk -v got="$got" -v want="$1" 'BEGIN {
    n = split(got, g, " "); split(want, w, " ")
    for (i = 1; i <= 7; i++) {
      e = w[i]; gsub(/c2/, cos(0.02), e); gsub(/s2/, sin(0.02), e)
      split(e, t, "*"); v = t[1] * (t[2] == "" ? 1 : t[2]) * (t[3] == "" ? 1 : t[3])
      if (n != 7 || (g[i] - v) ^ 2 > (1e-5 * (v < 0 ? -v : v) + 1e-6) ^ 2) exit 1
    } }' || gui_fail "camera VP VU angle \"$got\", expected \"$1\""
}
# The arrows turn by 0.02 rad: Left about the up vector to -y, Up about the
# right vector taking the eye down; + and - zoom by 0.95, . and , dolly.
key Left plus period; camera "57*c2 -57*s2 0 0 0 1 57"
key h Right minus comma; camera "63.157895*c2 63.157895*s2 0 0 0 1 63.157895"
key H Up equal greater; camera "57*c2 0 -57*s2 s2 0 c2 57"
key h Down underscore less; camera "63.157895*c2 0 63.157895*s2 -s2 0 c2 63.157895"
# The roll keys turn only the up vector; shifted arrows do nothing.
key h bracketright shift+Left shift+Up; camera "60 0 0 0 s2 c2 60"
# Zoom stops just below 1 and just above 90; the eye never crosses the origin.
key h bracketleft $(yes plus | head -90); camera "60 0 0 0 -s2 c2 0.990922"
key h $(yes minus | head -20) $(yes period | head -150); camera "0.0273333 0 0 0 0 1 90.440386"
# A left drag turns by -0.01 rad per pixel: 60 right, then 40 down; a
# middle drag rolls by 1/200 rad per pixel across and ignores up and down;
# with shift held neither moves.
key h; drag 300 300 360 300; camera "60*0.825336 -60*0.564642 0 0 0 1 60"
key h; drag 300 300 300 340; camera "60*0.921061 0 60*0.389418 -0.389418 0 0.921061 60"
key h; drag 300 300 340 330 2; drag 300 300 340 330 1 shift; camera "60 0 0 0 0.198669 0.980067 60"
# Autospin: a turns the view like Right, a bit each frame.
key h a; sleep 0.5; pov spin
awk -v y="$(sed -n 's/^#declare VP = <[^,]*,\([^,]*\),.*/\1/p' "$W/spin.pov")" 'BEGIN {exit !(y > 0)}' || gui_fail "a: no spin"
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
