#!/usr/bin/env bash
# The settings, slice and transform forms shown from the menu: typed values
# stored with their clamps (seen in the report), the root settings
# restarting, slicing, Apply, the Hide buttons; and the root distribution
# menu's shifted names, the source menu, Restart and Statistics.
# Usage: test_menu_forms.sh DLA3D
source "$(dirname "$0")/harness.sh"
source "$(dirname "$0")/harness_menu.sh"
gui_init "$1"
out=$GUI_WORKDIR
GUI_SCREEN=1600x1200x24
gui_start_xvfb
gui_start -d
gui_find_window || gui_fail "no window"

# Settings form, 411 x 531: points inside the inputs (layout coordinates).
S="411 531"
menu_choose $MENU_SETTINGS || gui_fail "menu"
form_type $S 200 180 250 || gui_fail "stickiness"   # stickiness
form_type $S 200 215 12 || gui_fail "rotation"      # particle rotation
menu_choose $MENU_ROOT 1 || gui_fail "root menu"   # "Random: x axis plane": "Spherical"
form_type $S 200 365 -7 || gui_fail "roots"         # number of roots
report_write "$out/r1.txt" || gui_fail "report"
grep -qx 'Stickiness: 100%' "$out/r1.txt" || gui_fail "stickiness 250 not stored as 100"
grep -qx 'Rotation: 5 degrees about z axis' "$out/r1.txt" || gui_fail "rotation 12 not stored as 5"
[ "$(report_value "$out/r1.txt" "Number of roots")" = 7 ] || gui_fail "-7 roots"
[ "$(report_value "$out/r1.txt" "Root distribution")" = Spherical ] || gui_fail "root name after the shifted entry"
n=$(report_value "$out/r1.txt" "Number of particles")
[ "$n" -ge 7 ] || gui_fail "particles $n"
# Hide hides the settings form.
read -r ox oy < <(form_origin $S)
form_press $S 350 495
[ "$(xdotool getmouselocation --shell | awk -F= '/^WINDOW=/ {print $2}')" = "$(printf '%d' "$(xwininfo -root | awk '/Window id:/ {print $4}')")" ] ||
  gui_fail "settings form still shown after Hide"

# The entry "Spherical" selects "Origin"; the restart keeps the name.
menu_choose $MENU_ROOT 0 || gui_fail "root menu"
menu_choose $MENU_RESTART || gui_fail "restart"
report_write "$out/r2.txt" || gui_fail "report"
[ "$(report_value "$out/r2.txt" "Root distribution")" = Origin ] || gui_fail "Spherical did not give Origin"
menu_choose $MENU_ROOT 6 || gui_fail "root menu"
report_write "$out/r3.txt" || gui_fail "report"
[ "$(report_value "$out/r3.txt" "Root distribution")" = "Ring: y axis plane" ] || gui_fail "ring name"

# Source menu: "Single axis (-z)" is reported as "-x"; "STL surface".
menu_choose $MENU_SOURCE 8 || gui_fail "source menu"
report_write "$out/r4.txt" || gui_fail "report"
grep -qx 'Source type: Single axis (-x)' "$out/r4.txt" || gui_fail "source 9"
menu_choose $MENU_SOURCE 16 || gui_fail "source menu"
report_write "$out/r5.txt" || gui_fail "report"
grep -qx 'Source type: STL surface' "$out/r5.txt" || gui_fail "source 17"
menu_choose $MENU_SOURCE 0 || gui_fail "source menu"

# Slice form, 421 x 251: a count of 1 gives two files; a zero normal
# becomes (0, 0, 1), which the form shows when opened again.
L="421 251"
menu_choose $MENU_PAUSE || gui_fail "pause"
menu_choose $MENU_SLICES || gui_fail "menu"
form_type $L 180 145 1 || gui_fail "slice count"
form_type $L 180 95 0 || gui_fail "normal x"
form_type $L 265 95 0 || gui_fail "normal y"
form_type $L 350 95 0 || gui_fail "normal z"
(cd "$out" && rm -f slice_*.txt)
form_press $L 260 215   # Slice
for i in $(seq 1 50); do [ -e "$out/slice_001.txt" ] && break; sleep 0.1; done
[ "$(cd "$out" && ls slice_*.txt | tr '\n' ' ')" = "slice_000.txt slice_001.txt " ] ||
  gui_fail "slice files: $(ls "$out")"
grep -q '^Slice 1, distance: ' "$GUI_STDERR" || gui_fail "no slice 1 on stderr"
form_press $L 350 215   # Hide
menu_choose $MENU_SLICES || gui_fail "menu"
# Read the normal back: select the z input's text and copy it out.
read -r ox oy < <(form_origin $L)
sleep 0.3
xwd -root -silent | convert xwd:- -crop 60x30+$((ox + 320))+$((oy + 80)) "$GUI_TMP/z.png"
xwd -root -silent | convert xwd:- -crop 60x30+$((ox + 150))+$((oy + 80)) "$GUI_TMP/x.png"
cmp -s <(convert "$GUI_TMP/z.png" txt:- | tail -n +2) <(convert "$GUI_TMP/x.png" txt:- | tail -n +2) &&
  gui_fail "z input shows the same as x (0) after Slice"
form_press $L 350 215   # Hide

# Transform form, 351 x 291: Apply moves a "Plane" sample surface.
T="351 291"
menu_choose $MENU_SAMPLE 10 || gui_fail "sample menu"
report_write "$out/t0.txt" || gui_fail "report"
grep -qx 'Constraint surface: Plane' "$out/t0.txt" || gui_fail "plane sample"
x0=$(sed -n 's/^   \(.*\) <= x <= \(.*\)$/\1 \2/p' "$out/t0.txt")
z0=$(sed -n 's/^   \(.*\) <= z <= \(.*\)$/\1 \2/p' "$out/t0.txt")
menu_choose $MENU_TRANSFORM || gui_fail "menu"
form_type $T 120 100 2 || gui_fail "scale x"
form_type $T 280 150 3 || gui_fail "shift z"
form_press $T 200 260   # Apply
sleep 0.5
report_write "$out/t1.txt" || gui_fail "report"
read -r a b <<<"$x0"
read -r c d <<<"$z0"
expx=$(awk -v a="$a" -v b="$b" 'BEGIN {printf "   %g <= x <= %g", 2 * a, 2 * b}')
expz=$(awk -v c="$c" -v d="$d" 'BEGIN {printf "   %g <= z <= %g", c + 3, d + 3}')
grep -qxF "$expx" "$out/t1.txt" || gui_fail "x bounds after Apply, want '$expx'"
grep -qxF "$expz" "$out/t1.txt" || gui_fail "z bounds after Apply, want '$expz'"
grep -q '^Scale  : 2,1,1$' "$GUI_STDERR" || gui_fail "scale on stderr"
grep -q '^Shift  : 0,0,3$' "$GUI_STDERR" || gui_fail "shift on stderr"
# The inputs are back at the identity: Apply again changes nothing.
form_press $T 200 260
sleep 0.5
grep -c '^Scale  : 1,1,1$' "$GUI_STDERR" | grep -qx 1 || gui_fail "inputs not reset after Apply"
report_write "$out/t2.txt" || gui_fail "report"
grep -qxF "$expx" "$out/t2.txt" || gui_fail "identity Apply moved the surface"
form_press $T 290 260   # Hide

# Statistics: the report gains its statistics block once the count ends.
menu_choose $MENU_PAUSE || gui_fail "continue"
sleep 1
menu_choose $MENU_STATISTICS || gui_fail "statistics"
for i in $(seq 1 40); do
  report_write "$out/s.txt" || gui_fail "report"
  grep -q '^   Box counting' "$out/s.txt" && grep -q '^Statistics at time step: ' "$out/s.txt" && break
  sleep 0.5
done
grep -q '^Statistics at time step: ' "$out/s.txt" || gui_fail "no statistics block"
grep -q '^   0:[0-9]* 1:[0-9]* 2:' "$out/s.txt" || gui_fail "no branch distribution"

gui_key_quit q
gui_wait_exit
[ "$GUI_STATUS" = 0 ] || gui_fail "status $GUI_STATUS"
gui_pass
