#!/usr/bin/env bash
# Soak: the program grows while random keys and menu choices hit it for
# SOAK_SECONDS (60, the warm-up and the paused stretch included); its
# resident memory, sampled all along, must stay in proportion to the cells
# grown and must not climb while growth is paused; it still quits with 0.
#   SOAK_SECONDS=3600 SOAK_PAUSE_SECONDS=60 tests/gui/test_soak.sh build/dla3d SHIM   before a release
#   SOAK_SEED=N repeats a sequence of actions.
# Usage: test_soak.sh DLA3D SHIM
source "$(dirname "$0")/harness.sh"
gui_init "$1" "$2"
SOAK_SECONDS=${SOAK_SECONDS:-60} SOAK_PAUSE_SECONDS=${SOAK_PAUSE_SECONDS:-10}
SOAK_SEED=${SOAK_SEED:-$(($(date +%s) % 32768))}
RANDOM=$SOAK_SEED
echo "soak: $SOAK_SECONDS s, seed $SOAK_SEED"
# Bounds (kB). Per cell: its record in an array that at most doubles, the
# boxes of a statistics run, and the renderer's binned copy of a frame of
# tubes (about 1 kB a cell, seen at 1,500 to 4,400 cells): 4 kB covers them,
# and a leak per growth step would exceed it. The fixed allowance is for
# one-off costs: each drawing mode's buffers, the largest sample surface and
# its display list, a dump buffer.
PER_CELL_KB=4 FIXED_KB=${SOAK_FIXED_KB:-32768} PAUSE_KB=${SOAK_PAUSE_KB:-1024}
rss() { awk '/^VmRSS:/ {print $2}' /proc/$GUI_PID/status; }
peak=0 max=0
sample() {
  gui_running || gui_fail "the program ended during the soak (after: $1)"
  local r
  r=$(rss)
  [ "$r" -gt "$max" ] && max=$r
  return 0
}
cells() {
  report
  CELLS=$(value "Number of particles")
  [ "$CELLS" -gt "$peak" ] && peak=$CELLS
  return 0
}
gui_start_xvfb
gui_start
# Warm-up: every drawing mode, the largest sample surface, statistics and a
# dump once before the baseline.
for m in Points "Tubes (Slow)" Lines; do menu "DLA drawing mode" "$m"; done
menu "Sample constraint surfaces" "Sphere"
for m in "Faces, solid" "Mid points of faces" "Faces, wireframe"; do menu "Constraint surface drawing mode" "$m"; done
key F5 w
sleep 1
base=$(rss)
cells
basecells=$CELLS
echo "baseline: $base kB at $CELLS cells"
# Keys of the table less the quitting ones and r; some that do nothing;
# menu choices that open no selector or form: "ENTRIES|MAIN" (0: no sub-menu).
keys=(h H plus equal minus underscore period greater comma less bracketleft bracketright a A F1 F2 F3 F5 Left Right Up Down
  shift+Left shift+Down x 1 space Tab F6 Home)
menus=("4|DLA drawing mode" "5|Constraint surface drawing mode" "17|New particle distribution" "11|Sample constraint surfaces"
  "7|Initial root distribution" "0|Toggle extras (f1)" "0|Toggle info (f2)" "0|Pause / Continue (f3)"
  "0|Calculate statistics (f5)" "0|#7" "0|#10" "0|#15" "0|#21")
growing=1 actions=0 dumps=0
end=$((SECONDS + SOAK_SECONDS - SOAK_PAUSE_SECONDS - 8))
while [ $SECONDS -lt $end ]; do
  actions=$((actions + 1)) r=$((RANDOM % 100))
  if [ $r -lt 2 ]; then  # restart (cells dropped, the array's capacity kept): count first
    cells
    if [ $((RANDOM % 2)) = 0 ]; then key F4; else menu "Restart simulation (f4)"; fi
    growing=1
  elif [ $r -lt 5 ] && [ $dumps -lt 5 ]; then
    dumps=$((dumps + 1))
    key w
  elif [ $r -lt 70 ]; then
    k=${keys[RANDOM % ${#keys[@]}]}
    [ "$k" = F3 ] && growing=$((1 - growing))
    key "$k"
  else
    IFS='|' read -r subs main <<<"${menus[RANDOM % ${#menus[@]}]}"
    [ "$main" = "Pause / Continue (f3)" ] && growing=$((1 - growing))
    if [ "$subs" -gt 0 ]; then menu "$main" "#$((RANDOM % subs))"; else menu "$main"; fi
  fi
  sample "action $actions"
  sleep "0.$((RANDOM % 5))"
done
echo "random actions: $actions"
# Paused, with the view spinning: the memory may move within what it
# reached, but not climb.
[ $growing = 1 ] && key F3
key a
sleep 2
cells
paused=$CELLS before=$max pausemax=0
for i in $(seq "$SOAK_PAUSE_SECONDS"); do
  sleep 1
  sample paused
  [ "$(rss)" -gt "$pausemax" ] && pausemax=$(rss)
done
cells
[ "$CELLS" = "$paused" ] || gui_fail "growth went on while paused: $paused then $CELLS cells"
allowed=$((FIXED_KB + peak * PER_CELL_KB))
echo "cells: baseline $basecells, largest $peak; RSS (kB): baseline $base, highest $max, allowed growth $allowed"
echo "paused $SOAK_PAUSE_SECONDS s: highest $pausemax kB (before: $before kB)"
[ $((max - base)) -le "$allowed" ] || gui_fail "memory out of proportion: $((max - base)) kB for $peak cells"
[ $((pausemax - before)) -le "$PAUSE_KB" ] || gui_fail "memory grew by $((pausemax - before)) kB while paused"
gui_quit q
gui_pass
