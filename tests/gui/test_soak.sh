#!/usr/bin/env bash
# Soak: random keys and menus for SOAK_SECONDS (60) while it grows; its memory
# stays in proportion to the cells and does not climb while paused; it quits
# with 0. SOAK_SEED=N repeats a run. Before a release: SOAK_SECONDS=3600
# SOAK_PAUSE_SECONDS=60 tests/gui/test_soak.sh build/dla3d build/tests/gui/libdla_gui_shim.so
source "$(dirname "$0")/harness.sh"
gui_init "$1" "$2"
SOAK_SECONDS=${SOAK_SECONDS:-60} SOAK_PAUSE_SECONDS=${SOAK_PAUSE_SECONDS:-10} RANDOM=${SOAK_SEED:=$((RANDOM + $$))}
echo "soak: $SOAK_SECONDS s, seed $SOAK_SEED"
# Bounds (kB): per cell its record, a statistics run's boxes, a frame of tubes
# (1 kB), where a leak per step would not fit; fixed: each drawing mode's
# buffers, the largest sample surface, a dump buffer.
PER_CELL_KB=4 FIXED_KB=${SOAK_FIXED_KB:-32768} PAUSE_KB=${SOAK_PAUSE_KB:-1024}
rss() { awk '/^VmRSS:/ {print $2}' /proc/$GUI_PID/status; }
max=0 peak=0 growing=1 actions=0 dumps=0
sample() {
  gui_running || gui_fail "the program ended during the soak"
  [ "$(rss)" -le "$max" ] || max=$(rss)
}
cells() {
  report
  CELLS=$(value "Number of particles")
  [ "$CELLS" -le "$peak" ] || peak=$CELLS
}
gui_start_xvfb
gui_start
# Warm-up: every drawing mode, the largest sample, statistics and a dump.
for m in Points "Tubes (Slow)" Lines; do menu "DLA drawing mode" "$m"; done
menu "Sample constraint surfaces" "Sphere"
for m in "Faces, solid" "Mid points of faces" "Faces, wireframe"; do menu "Constraint surface drawing mode" "$m"; done
key F5 w; sleep 1; base=$(rss); cells
# Keys less the quitting ones and r; menus that open no selector or form,
# as "ENTRIES|MAIN" (0: no sub-menu).
keys=(h H plus equal minus underscore period greater comma less bracketleft bracketright a A F1 F2 F3 F5 Left Right Up Down
  shift+Left shift+Down x 1 space Tab F6 Home)
menus=("4|DLA drawing mode" "5|Constraint surface drawing mode" "17|New particle distribution" "11|Sample constraint surfaces"
  "7|Initial root distribution" "0|Toggle extras (f1)" "0|Toggle info (f2)" "0|Pause / Continue (f3)"
  "0|Calculate statistics (f5)" "0|#7" "0|#10" "0|#15" "0|#21")
end=$((SECONDS + SOAK_SECONDS - SOAK_PAUSE_SECONDS - 14))
while [ $SECONDS -lt $end ]; do
  actions=$((actions + 1)) r=$((RANDOM % 100))
  if [ $r -lt 2 ]; then  # a restart drops cells, not the array's room: count first
    cells
    if [ $((RANDOM % 2)) = 0 ]; then key F4; else menu "Restart simulation (f4)"; fi
    growing=1
  elif [ $r -lt 5 ] && [ $dumps -lt 5 ]; then
    key w; dumps=$((dumps + 1))
  elif [ $r -lt 70 ]; then
    k=${keys[RANDOM % ${#keys[@]}]}
    [ "$k" != F3 ] || growing=$((1 - growing))
    key "$k"
  else
    IFS='|' read -r n main <<<"${menus[RANDOM % ${#menus[@]}]}"
    [ "$main" != "Pause / Continue (f3)" ] || growing=$((1 - growing))
    if [ "$n" -gt 0 ]; then menu "$main" "#$((RANDOM % n))"; else menu "$main"; fi
  fi
  sample
  sleep "0.$((RANDOM % 5))"
done
# A statistics count goes on while paused, its boxes taking memory, for hours
# at one box a frame; a restart shrinks its radius, so that it soon ends, and
# growth resumes. No surface: a closed hemisphere's disc vetoes every cell.
menu "Sample constraint surfaces" "None"
cells; key F4; cells; counted=$CELLS
wait_for 30 eval 'cells; [ "$CELLS" -gt "$counted" ]' || gui_fail "no growth for 30 s after a restart"
sleep 5  # cells for the paused frames to draw
# Paused, the view spinning: the memory may move within what it reached.
key F3; key a; sleep 2; cells
# The memory settles first (up to a minute): a frame may be under way.
last=0
for i in $(seq 30); do
  [ "$(rss)" != "$last" ] || break
  last=$(rss)
  sleep 2
done
sample
paused=$CELLS before=$max pausemax=0
for i in $(seq "$SOAK_PAUSE_SECONDS"); do
  sleep 1; sample; [ "$(rss)" -le "$pausemax" ] || pausemax=$(rss)
done
cells
[ "$CELLS" = "$paused" ] || gui_fail "growth went on while paused: $paused then $CELLS cells"
echo "$actions actions; largest aggregate $peak cells; RSS (kB): highest $max, allowed $((base + FIXED_KB + peak * PER_CELL_KB));" \
  "paused $SOAK_PAUSE_SECONDS s: highest $pausemax (before: $before)"
[ $((max - base)) -le $((FIXED_KB + peak * PER_CELL_KB)) ] || gui_fail "memory out of proportion: $((max - base)) kB for $peak cells"
[ $((pausemax - before)) -le "$PAUSE_KB" ] || gui_fail "memory grew by $((pausemax - before)) kB while paused"
gui_quit q
gui_pass
