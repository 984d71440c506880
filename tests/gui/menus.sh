#!/usr/bin/env bash
# Menus, file selector, message box and forms: every file saved equals the
# batch program's at the same cell count; seeds and surfaces that cannot be
# read; the forms' inputs reaching the settings; the root and source names;
# cancels, separators, Quit.
source "$(dirname "$0")/harness.sh"
gui_init "$1" "$2"
batch=$(realpath "$3")
gui_start_xvfb
gui_start
prompt() { [ "$(last_prompt)" = "$1" ] || gui_fail "file selector title \"$(last_prompt)\", expected \"$1\""; }
answer() { echo "$1" >"$GUI_TMP/answer"; }
message() {  # the message box's three lines; Enter answers it
  [ "$(grep '^message ' "$LOG" | tail -1)" = "message $1" ] || gui_fail "$(grep '^message' "$LOG" | tail -1), expected $1"
  wait_for 30 eval 'm=$(xdotool search --onlyvisible --name "^Message$" | head -1); [ -n "$m" ]' || gui_fail "no message box"
  xdotool windowfocus --sync "$m" key Return
  wait_for 30 eval '! xdotool search --onlyvisible --name "^Message$" >/dev/null' || gui_fail "message box still shown"
}

# A surface, then roots from a seed file (a restart with fresh weights, as
# the batch program starts), some growth, held; every file through the menus.
menu "Sample constraint surfaces" "Box"
answer "$(printf '0 0 0\n' >"$W/seeds.txt"; echo "$W/seeds.txt")"; menu "Read seeds"; prompt "Seed file"
sleep 1; key F3
mkdir "$W/gui" "$W/batch"
while IFS='|' read -r option title main sub; do
  save "$W/gui/$option" "$main" ${sub:+"$sub"}
  prompt "$title"
  args+=(--$option "$W/batch/$option")
done <<'SAVES'
pov|PovRay file|Save DLA as|PovRay (Cylinders + Spheres)
pov-sweep|PovRay file|Save DLA as|PovRay (Sphere sweep)
geom|GEOM file|Save DLA as|GEOM (Cylinders + Spheres)
vrml|VRML file|Save DLA as|VRML (Cylinders + Spheres)
vrml-caps|VRML file|Save DLA as|VRML (Cylinders + Endcaps + Spheres)
dxf-points|POINT DXF file|Save DLA as|Point cloud as DXF
geom-points|POINT GEOM file|Save DLA as|Point cloud as GEOM
stl-out|STL file|Save constraint surface to STL file
info|Text file|Save simulation information
SAVES
cells=$(sed -n 's/^Number of particles: //p' "$W/gui/info")
[ "${cells:-0}" -gt 1 ] || gui_fail "no growth: $cells cells"
"$batch" --no-progress --sample 11 --seed-file "$W/seeds.txt" --cells "$cells" "${args[@]}" || gui_fail "batch status $?"
for f in "$W"/gui/*; do cmp "$f" "$W/batch/${f##*/}" >&2 || gui_fail "${f##*/}: the window's file differs from the batch program's"; done

# Cancelled or empty answers write nothing; the separators do nothing.
before=$(ls -R "$W")
for a in CANCEL ""; do
  answer "$a"; menu "Save DLA as" "Point cloud as GEOM"; answer "$a"; menu "Save simulation information"
done
menu "#7"; menu "#15"
[ "$(ls -R "$W")" = "$before" ] || gui_fail "files changed: $(ls -R "$W")"

# A seed file and a surface that cannot be read: the message box (what is read: the unit tests).
answer "$W/none.txt"; menu "Read seeds"
message "File Error|Failed to read seed file|$W/none.txt"
answer "$W/none.stl"; menu "Read constraint surface from STL file"; prompt "STL file"
message "File Error|Failed to read STL file|$W/none.stl"

# Settings form, 411 x 531: clamped values, the roots' restart, Hide.
S="411 531"
menu "Initial root distribution" "Random: x axis plane"  # stores "Spherical"
menu "Settings"; shown 2 || gui_fail "no settings form"
field $S 200 180 250; field $S 200 215 12; field $S 200 365 -7  # stickiness, rotation, roots
press $S 350 495  # Hide
shown 1 || gui_fail "the settings form is still shown"
menu "Initial root distribution" "Ring: y axis plane"  # stores "Ring: x axis plane"
menu "New particle distribution" "Single axis (-z)"; report  # the report says (-x)
grep -qx 'Stickiness: 100%' "$W/report.txt" && grep -qx 'Rotation: 5 degrees about z axis' "$W/report.txt" &&
  [ "$(value "Number of roots")" = 7 ] && [ "$(value "Root distribution")" = "Ring: x axis plane" ] &&
  grep -qx 'Source type: Single axis (-x)' "$W/report.txt" || gui_fail "settings: $(head -13 "$W/report.txt")"
# Slice form, 421 x 251: a count of 1 gives two files, a zero normal cuts along z.
L="421 251"
menu "Compute/save slices"; field $L 180 145 1
for x in 180 265 350; do field $L $x 95 0; done
press $L 260 215  # Slice
wait_for 30 test -e "$W/slice_001.txt" || gui_fail "no slices"
[ "$(cd "$W" && ls slice_*)" = $'slice_000.txt\nslice_001.txt' ] && grep -q '^Slice 1, distance: ' "$GUI_TMP/stderr" || gui_fail "slices"
press $L 350 215  # Hide
# Transform form, 351 x 291: Apply scales and shifts the plane sample; the
# inputs go back to the identity, so Apply again changes nothing.
T="351 291"
menu "Sample constraint surfaces" "Plane"; menu "Transform constraint surface"
field $T 120 100 2; field $T 280 150 3  # scale x, shift z
press $T 200 260; press $T 200 260; press $T 290 260; report  # Apply, again with the inputs back at the identity, Hide
grep -qx '   -400 <= x <= 400' "$W/report.txt" && grep -qx '   -17 <= z <= -17' "$W/report.txt" || gui_fail "Apply: $(grep '<=' "$W/report.txt")"
# Statistics, then the report typed into the real file selector; Quit.
menu "Calculate statistics (f5)"; menu "Save simulation information"
wait_for 30 eval 'f=$(xdotool search --onlyvisible --name "^FileSelector$" | head -1); [ -n "$f" ]' || gui_fail "no file selector"
xdotool windowfocus --sync "$f" type -- "$W/typed.txt"; xdotool key Return
wait_for 30 grep -q '^   Box counting' "$W/typed.txt" || gui_fail "no statistics in the report typed into the selector"
menu "Quit (q)"; gui_wait_exit
[ "$STATUS" = 0 ] || gui_fail "Quit: status $STATUS"

# A vertex line that does not scan: the message, then status -1.
gui_start
answer "$(printf 'solid b\nouter loop\nvertex 0 0 0\nvertex 4 zero 0\n' >"$W/broken.stl"; echo "$W/broken.stl")"
menu "Read constraint surface from STL file"
message "File Error|Error reading vertices in ascii STL file|"; gui_wait_exit
[ "$STATUS" = 255 ] || gui_fail "status $STATUS after a malformed STL file"
gui_pass
