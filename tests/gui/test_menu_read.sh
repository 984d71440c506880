#!/usr/bin/env bash
# "Read seeds" and "Read constraint surface from STL file" through the file
# selector: good files change the report, unreadable ones show the "File
# Error" message box and the program goes on, a malformed ASCII STL file
# ends it with status 255 after the message.
# Usage: test_menu_read.sh DLA3D
source "$(dirname "$0")/harness.sh"
source "$(dirname "$0")/harness_menu.sh"
gui_init "$1"
out=$GUI_WORKDIR
cat >"$out/seeds.txt" <<'SEEDS'
5 0 0
-5 0 0
0 5 0
0 0 5 and then
1 2
9 9 9
SEEDS
printf 'not a seed file\n' >"$out/bad_seeds.txt"
cat >"$out/tri.stl" <<'STL'
solid two
 facet normal 0 0 1
  outer loop
   vertex 0 0 0
   vertex 4 0 0
   vertex 0 3 0
  endloop
 endfacet
 facet normal 0 0 1
  outer loop
   vertex 0 0 0
   vertex 0 3 0
   vertex -2 0 7
  endloop
 endfacet
endsolid two
STL
cat >"$out/broken.stl" <<'STL'
solid broken
 facet normal 0 0 1
  outer loop
   vertex 0 0 0
   vertex 4 zero 0
   vertex 0 3 0
  endloop
 endfacet
endsolid broken
STL

gui_start_xvfb
gui_start -d
gui_find_window || gui_fail "no window"

# Four roots: reading stops at the line with two numbers.
menu_choose $MENU_READ_SEEDS || gui_fail "menu"
fsel_type "$out/seeds.txt" || gui_fail "selector"
grep -q '^Read 4 root seed positions$' "$GUI_STDERR" || gui_fail "no read message on stderr"
report_write "$out/r1.txt" || gui_fail "report"
[ "$(report_value "$out/r1.txt" "Number of roots")" = 4 ] || gui_fail "roots after seed file"
# The path is stored as the name, but the restart on distribution 1
# renames the roots "Origin" before the points are read.
[ "$(report_value "$out/r1.txt" "Root distribution")" = Origin ] || gui_fail "root name"

# A seed file that cannot be opened: message, nothing changes.
menu_choose $MENU_READ_SEEDS || gui_fail "menu"
fsel_type "$out/missing.txt" || gui_fail "selector"
msg_dismiss || gui_fail "no message box for a missing seed file"
report_write "$out/r2.txt" || gui_fail "report"
[ "$(report_value "$out/r2.txt" "Number of roots")" = 4 ] || gui_fail "roots changed by a missing file"

# A file without a point: message, then one root at the origin.
menu_choose $MENU_READ_SEEDS || gui_fail "menu"
fsel_type "$out/bad_seeds.txt" || gui_fail "selector"
msg_dismiss || gui_fail "no message box for an empty seed file"
report_write "$out/r3.txt" || gui_fail "report"
[ "$(report_value "$out/r3.txt" "Number of roots")" = 1 ] || gui_fail "roots after a bad file"

# A good ASCII STL file: two faces and their bounds.
menu_choose $MENU_READ_STL || gui_fail "menu"
fsel_type "$out/tri.stl" || gui_fail "selector"
report_write "$out/r4.txt" || gui_fail "report"
[ "$(report_value "$out/r4.txt" "Faces in constraint surface")" = 2 ] || gui_fail "faces"
grep -qx '   -2 <= x <= 4' "$out/r4.txt" || gui_fail "x bounds"
grep -qx '   0 <= z <= 7' "$out/r4.txt" || gui_fail "z bounds"
# Read from a file, the surface goes by the name "None".
grep -qx 'Constraint surface: None' "$out/r4.txt" || gui_fail "surface name"

# An STL path that cannot be opened: message, the surface stays.
menu_choose $MENU_READ_STL || gui_fail "menu"
fsel_type "$out/nowhere/x.stl" || gui_fail "selector"
msg_dismiss || gui_fail "no message box for a missing STL file"
report_write "$out/r5.txt" || gui_fail "report"
[ "$(report_value "$out/r5.txt" "Faces in constraint surface")" = 2 ] || gui_fail "surface lost"
gui_running || gui_fail "program ended"

# A malformed vertex line: message, then the end with status -1.
menu_choose $MENU_READ_STL || gui_fail "menu"
fsel_type "$out/broken.stl" || gui_fail "selector"
msg_dismiss || gui_fail "no message box for a malformed STL file"
gui_wait_exit
[ "$GUI_STATUS" = 255 ] || gui_fail "exit status $GUI_STATUS after a malformed STL file"
gui_pass
