#!/usr/bin/env bash
# Every save entry of the menus writes its file through the file selector;
# a cancelled selector writes nothing; separators do nothing; "Quit (q)"
# ends the program with status 0.
# Usage: test_menu_save.sh DLA3D
source "$(dirname "$0")/harness.sh"
source "$(dirname "$0")/harness_menu.sh"
gui_init "$1"
gui_start_xvfb
gui_start -d
gui_find_window || gui_fail "no window"
out=$GUI_WORKDIR
sleep 1
# Hold the aggregate still so that every file shows the same cells.
menu_choose $MENU_PAUSE || gui_fail "menu"

# save FILE SUBENTRY...: one save entry, then the selector.
save() {
  local f=$1
  shift
  menu_choose "$@" || gui_fail "menu for $f"
  fsel_type "$out/$f" || gui_fail "selector for $f"
  for i in $(seq 1 50); do [ -s "$out/$f" ] && return 0; sleep 0.1; done
  gui_fail "$f not written"
}
save sweep.pov $MENU_SAVE 0
save cyl.pov $MENU_SAVE 1
save model.geom $MENU_SAVE 2
save plain.wrl $MENU_SAVE 3
save capped.wrl $MENU_SAVE 4
save points.dxf $MENU_SAVE 5
save points.geom $MENU_SAVE 6
report_write "$out/report.txt" || gui_fail "report not written"

n=$(report_value "$out/report.txt" "Number of particles")
[ -n "$n" ] && [ "$n" -gt 1 ] || gui_fail "particles in report: '$n'"
# A paused run: the count stays.
report_write "$out/report2.txt" || gui_fail "second report"
[ "$(report_value "$out/report2.txt" "Number of particles")" = "$n" ] || gui_fail "pause did not hold the count"

# What each format starts with, and the cells it holds.
grep -q 'sphere_sweep' "$out/sweep.pov" || gui_fail "no sphere sweep in the sweep variant"
! grep -q 'sphere_sweep' "$out/cyl.pov" || gui_fail "sphere sweep in the cylinder variant"
[ "$(grep -c '^ cone {' "$out/cyl.pov")" = $((n - 1)) ] || gui_fail "cones in cyl.pov"
head -c 21 "$out/model.geom" | grep -qx '# 3D DLA by Orvantide' || gui_fail "GEOM head"
[ "$(grep -c '^c ' "$out/model.geom")" = $((n - 1)) ] || gui_fail "cylinders in GEOM"
head -n 1 "$out/plain.wrl" | grep -q '^#VRML V2.0 utf8' || gui_fail "VRML head"
cmp -s "$out/plain.wrl" "$out/capped.wrl" && gui_fail "the two VRML variants are equal"
[ "$(grep -cx 'POINT' "$out/points.dxf")" = $((10 * (n - 1))) ] || gui_fail "DXF points"
[ -s "$out/points.geom" ] || gui_fail "GEOM points"

# The surface of a sample shape ("Box") as STL: as many facets as the
# report counts, spanning the report's bounds.
menu_choose $MENU_SAMPLE 4 || gui_fail "sample menu"
save box.stl $MENU_SAVE_STL
report_write "$out/report3.txt" || gui_fail "report 3"
faces=$(report_value "$out/report3.txt" "Faces in constraint surface")
[ -n "$faces" ] && [ "$faces" -gt 0 ] || gui_fail "faces in report: '$faces'"
[ "$(grep -c 'outer loop' "$out/box.stl")" = "$faces" ] || gui_fail "box.stl facets"
grep -qx 'Constraint surface: Box' "$out/report3.txt" || gui_fail "surface name"
xr=$(awk '$1 == "vertex" {if (n++ == 0 || $2 < lo) lo = $2; if (n == 1 || $2 > hi) hi = $2} END {printf "%g <= x <= %g", lo, hi}' "$out/box.stl")
grep -qx "   $xr" "$out/report3.txt" || gui_fail "STL x range $xr not in the report"

# A cancelled selector writes nothing, for a model and for the report.
before=$(ls "$out" | sort)
menu_choose $MENU_SAVE 1 || gui_fail "menu"
fsel_cancel || gui_fail "cancel"
menu_choose $MENU_SAVE_INFO || gui_fail "menu"
fsel_cancel || gui_fail "cancel"
# The separators are plain entries that do nothing.
for s in $MENU_SEPARATOR1 $MENU_SEPARATOR2 $MENU_SEPARATOR3 $MENU_SEPARATOR4; do
  menu_choose $s || gui_fail "separator $s"
done
sleep 0.5
[ "$(ls "$out" | sort)" = "$before" ] || gui_fail "files changed: $(ls "$out")"
gui_running || gui_fail "program ended"
[ -z "$(xdotool search --onlyvisible --name '^(FileSelector|Message)$' 2>/dev/null)" ] || gui_fail "a dialog is open"

menu_choose $MENU_QUIT
gui_wait_exit
[ "$GUI_STATUS" = 0 ] || gui_fail "exit status $GUI_STATUS after Quit"
gui_pass
