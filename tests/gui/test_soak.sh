#!/usr/bin/env bash
# Soak: the program grows while random keys and menu choices hit it for
# SOAK_SECONDS (default 60, warm-up and the final pause included); its
# resident memory is sampled all along and must stay in proportion to the
# cells grown, and must not grow at all while growth is paused. At the end
# the program still runs and quits with status 0. The figures are printed.
#
# Usage: test_soak.sh DLA3D
#   SOAK_SECONDS=3600 tests/gui/test_soak.sh build/dla3d    # before a release
#   SOAK_SEED=N       repeats the same sequence of actions
#   SOAK_PAUSE_SECONDS  length of the paused stretch at the end (default 10)
source "$(dirname "$0")/harness.sh"
source "$(dirname "$0")/harness_dump.sh"
source "$(dirname "$0")/harness_menu.sh"
source "$(dirname "$0")/harness_view.sh"
gui_init "$1"
out=$GUI_WORKDIR
GUI_SCREEN=1600x1200x24
SOAK_SECONDS=${SOAK_SECONDS:-60}
SOAK_PAUSE_SECONDS=${SOAK_PAUSE_SECONDS:-10}
SOAK_SEED=${SOAK_SEED:-$(( $(date +%s) % 32768 ))}
RANDOM=$SOAK_SEED
echo "soak: ${SOAK_SECONDS} s, seed $SOAK_SEED"

# Bounds (kB). The program keeps per cell one 40-byte record in an array
# that at most doubles its capacity (80 bytes) and, after statistics, a
# list of occupied boxes over at most ten levels. The renderer keeps more:
# in "Tubes (Slow)" a frame sends 22 triangles per cell, and the software
# renderer's binned copy of one frame grows to about 1 kB per cell (seen
# switching lines to tubes at 1,500, 3,200 and 4,400 cells). 4 kB per cell
# covers both with room, and a leak per growth step would still exceed it
# (100 steps per idle call, most of them not adding a cell). The fixed
# allowance is for one-off costs that do not depend on the cells: the
# renderer's state and buffers for each drawing mode and the first frames
# of tubes, the largest sample surface (a sphere of 5,184 facets) and its
# display list, the window dump buffer left in the heap.
PER_CELL_KB=4
FIXED_KB=${SOAK_FIXED_KB:-32768}
# While paused the picture still changes (autospin) but nothing is added:
# the resident set may move inside what it has already reached, and may
# not climb above its earlier highest by more than this.
PAUSE_KB=${SOAK_PAUSE_KB:-1024}

samples=$GUI_TMP/rss.txt
start_time=$(date +%s.%N)
elapsed() { awk -v s="$start_time" -v n="$(date +%s.%N)" 'BEGIN {printf "%.1f", n - s}'; }
sample() {
  gui_running || gui_fail "the program ended during the soak (after: $1)"
  echo "$(elapsed) $(view_rss) $1" >>"$samples"
}

peak=0
reports=0
CELLS=0
# note_cells: writes a report through the menu and sets CELLS to its
# particle count (and peak to the largest count seen).
note_cells() {
  reports=$((reports + 1))
  report_write "$out/report$reports.txt" || gui_fail "report $reports not written"
  CELLS=$(report_value "$out/report$reports.txt" "Number of particles")
  [ -n "$CELLS" ] || gui_fail "no particle count in report $reports"
  [ "$CELLS" -gt "$peak" ] && peak=$CELLS
  return 0
}

gui_start_xvfb
gui_start
gui_find_window || gui_fail "no window"
sleep 1
growing=1

# Warm-up: meet once every drawing mode, the largest sample surface, a
# statistics run and a dump, so their one-off costs come before the
# baseline (they are counted in FIXED_KB all the same).
for m in $VIEW_DLA_POINTS $VIEW_DLA_TUBES $VIEW_DLA_LINES; do view_dla_mode $m || gui_fail "menu"; done
menu_choose $MENU_SAMPLE $VIEW_SAMPLE_SPHERE || gui_fail "menu"
for m in $VIEW_STL_SOLID $VIEW_STL_MID $VIEW_STL_WIRE; do view_stl_mode $m || gui_fail "menu"; done
gui_key F5 w
sleep 1
base_rss=$(view_rss)
note_cells
base_cells=$CELLS
sample warm-up
echo "baseline: $base_rss kB at $base_cells cells"

# The keys of the table, less q, Q, Esc (they quit) and r, R (a dump every
# frame); some keys that do nothing; w now and then.
keys=(h H plus equal minus underscore period greater comma less bracketleft bracketright
  a A F1 F2 F3 F5 Left Right Up Down shift+Left shift+Down x 1 space Tab F6 Home)
# Menu choices that neither open a file selector or a form nor quit:
# "MAIN SUB-ENTRIES" (0 for an entry without a sub-menu).
menus=("$MENU_DLA_MODE 4" "$MENU_STL_MODE 5" "$MENU_SOURCE 17" "$MENU_SAMPLE 11" "$MENU_ROOT 7"
  "$MENU_EXTRAS 0" "$MENU_INFO 0" "$MENU_PAUSE 0" "$MENU_STATISTICS 0"
  "$MENU_SEPARATOR1 0" "$MENU_SEPARATOR2 0" "$MENU_SEPARATOR3 0" "$MENU_SEPARATOR4 0")

# A restart (F4 or the menu entry, rarer than the rest so that the
# aggregate gets somewhere) drops the cells but not the array's capacity:
# count the cells first, so the memory bound is set by the largest one.
restart() {
  note_cells
  growing=1
  if [ $((RANDOM % 2)) = 0 ]; then
    gui_key F4
    sample F4
  else
    menu_choose $MENU_RESTART || gui_fail "menu restart"
    sample "menu restart"
  fi
}

random_end=$(( $(date +%s) + SOAK_SECONDS - SOAK_PAUSE_SECONDS - 8 ))
actions=0
dumps=0
while [ "$(date +%s)" -lt "$random_end" ]; do
  actions=$((actions + 1))
  r=$((RANDOM % 100))
  if [ $r -lt 2 ]; then
    restart
  elif [ $r -lt 5 ] && [ $dumps -lt 5 ]; then
    dumps=$((dumps + 1))
    gui_key w
    sample w
  elif [ $r -lt 70 ]; then
    k=${keys[RANDOM % ${#keys[@]}]}
    [ "$k" = F3 ] && growing=$((1 - growing))
    gui_key "$k"
    sample "$k"
  else
    read -r main nsub <<<"${menus[RANDOM % ${#menus[@]}]}"
    [ "$main" = "$MENU_PAUSE" ] && growing=$((1 - growing))
    if [ "$nsub" -gt 0 ]; then
      sub=$((RANDOM % nsub))
      menu_choose "$main" "$sub" || gui_fail "menu $main $sub"
      sample "menu $main $sub"
    else
      menu_choose "$main" || gui_fail "menu $main"
      sample "menu $main"
    fi
  fi
  sleep "0.$((RANDOM % 5))"
done
echo "random actions: $actions"

# Pause, let any statistics count and the last frames settle, then watch
# the memory while the view keeps turning (autospin) over paused growth.
[ $growing = 1 ] && gui_key F3
growing=0
gui_key a
sleep 2
note_cells
paused_cells=$CELLS
pause_rss0=$(view_rss)
before_max=$(awk 'BEGIN {m = 0} $2 > m {m = $2} END {print m}' "$samples")
[ "$pause_rss0" -gt "$before_max" ] && before_max=$pause_rss0
pause_max=$pause_rss0
for i in $(seq 1 "$SOAK_PAUSE_SECONDS"); do
  sleep 1
  sample paused
  v=$(view_rss)
  [ "$v" -gt "$pause_max" ] && pause_max=$v
done
note_cells
after_cells=$CELLS
[ "$after_cells" = "$paused_cells" ] || gui_fail "growth went on while paused: $paused_cells then $after_cells cells"

max_rss=$(awk 'BEGIN {m = 0} $2 > m {m = $2} END {print m}' "$samples")
end_rss=$(view_rss)
growth=$((max_rss - base_rss))
allowed=$((FIXED_KB + peak * PER_CELL_KB))
echo "cells: baseline $base_cells, largest $peak, at the end $paused_cells"
echo "RSS (kB): baseline $base_rss, highest $max_rss, at the end $end_rss; growth $growth, allowed $allowed"
awk -v g="$growth" -v c="$peak" -v b="$base_cells" 'BEGIN {if (c > b) printf "RSS growth per cell grown: %.0f bytes\n", g * 1024 / (c - b)}'
echo "paused ${SOAK_PAUSE_SECONDS} s: RSS $pause_rss0 kB, highest $pause_max kB (highest before: $before_max kB)"
[ "$growth" -le "$allowed" ] || gui_fail "memory out of proportion: $growth kB for $peak cells (allowed $allowed)"
[ $((pause_max - before_max)) -le "$PAUSE_KB" ] || gui_fail "memory grew by $((pause_max - before_max)) kB while paused"

gui_running || gui_fail "program ended"
gui_key_quit q
gui_wait_exit
[ "$GUI_STATUS" = 0 ] || gui_fail "exit status $GUI_STATUS"
gui_pass
